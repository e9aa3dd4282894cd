#pragma once

#include <engine/EngineValue.hpp>

#include <boost/smart_ptr/intrusive_ptr.hpp>

namespace reference::property {

/// A slot for a value of the host's computing engine. The library leaves every slot empty;
/// moving a record moves its slots (the source's become empty) and destroying it releases
/// whatever the host has put there, exactly once.
using EngineHandle = boost::intrusive_ptr<engine::EngineValue>;

} // namespace reference::property
