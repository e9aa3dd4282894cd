#pragma once

#include "docparser/loading/FileAccess.hpp"
#include "docparser/loading/LoadContext.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <string>
#include <string_view>

namespace reference::docparser::detail {

// parseMultipleProductFiles with the caller's context, which its parser may share: the lookup
// loader's parser reads into the same scratch memory and the same records.
DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap>
parseProductFiles(const std::u16string& folder,
                  const ParsingInfo<DocResourceParser::LookupResourceMap>::JsonParsingFcn& jsonParsingFcn,
                  const ParsingInfo<DocResourceParser::LookupResourceMap>::IsInstalledFcn& isInstalledFcn,
                  LoadContext& context);

// Ends the record of a file that counts as absent: the reason of the failure that is in the
// record already (a reader put it there), else the read's, else `fallback`.
void recordDrop(FileDiagnostic* record, const ReadResult& read, DropReason fallbackReason,
                std::string_view fallbackMessage);

} // namespace reference::docparser::detail
