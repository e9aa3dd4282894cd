// Must not compile: the pipeline is built for the lookup resources only, and saying so in the
// header turns a link error into a compile error that names the constraint.
#include <reference/docparser/DocResourceParser.hpp>

using namespace reference::docparser;

int main() {
    using PageMap = DocResourceParser::RefItemFileMap;
    const ParsingInfo<PageMap>::JsonParsingFcn parser;
    const ParsingInfo<PageMap>::IsInstalledFcn installed;
    (void)DocResourceParser::ParsingTools::parseMultipleProductFiles<PageMap>(u"folder", parser, installed);
}
