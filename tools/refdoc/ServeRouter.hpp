#pragma once

// The requests `refdoc serve` answers: the method and path checks, the assets, the language of
// the request, and which view answers it.

#include "ServeSnapshots.hpp"

#include <httplib.h>

namespace refdoc::tool::serve {

// Answers one request; the languages a request may ask for are the settings' supported ones.
void respond(SnapshotCache& cache, const httplib::Request& request, httplib::Response& response);

// An answer for a request whose view failed: a 500 page saying why.
void respondWithError(const SnapshotCache& cache, const std::string& reason, httplib::Response& response);

} // namespace refdoc::tool::serve
