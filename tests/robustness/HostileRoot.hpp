#pragma once

// A documentation root holding one sound product, "control", as a lookup file and a page file.
// The hostile-input tests add a hostile file beside it and check that loading still returns, that
// the control product is unaffected and that the load stayed within a memory bound.

#include "AllocationCounter.hpp"

#include "support/DocrootBuilder.hpp"
#include "support/HostSettingsFixture.hpp"
#include "support/TempDir.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace refdoc::test {

class HostileRoot : public HostSettingsFixture {
protected:
    using DocResourceParser = reference::docparser::DocResourceParser;
    using LookupResults = DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap>;
    using PageMap = DocResourceParser::RefItemFileMap;

    struct Loaded {
        LookupResults lookups;  // every product's lookup data
        PageMap pages;          // the pages of the product named by the load
        PageMap controlPages;   // the control product's pages
        AllocationStats memory; // what the three loads allocated
    };

    void SetUp() override {
        HostSettingsFixture::SetUp();
        root_.write(std::filesystem::path(kLookupFolder) / "control.json",
                    fileText(lookupDocument({"Control", "CTL", "control"}, {{"probe", "Always here"}})));
        root_.write(std::filesystem::path(kReferenceFolder) / "control.json",
                    fileText(pageDocument({"Control", "CTL", "control"}, {{"control/probe.html", "Always here"}})));
        DocResourceParser::setReferenceRoot(root_.u16());
        DocResourceParser::setTestProducts({u"control", u"hostile"}, {});
        controlOnly_ = load(u"control");
        ASSERT_EQ(controlOnly_.lookups.installedResources.size(), 1u);
        ASSERT_EQ(controlOnly_.controlPages.size(), 1u);
    }

    std::filesystem::path lookupFolder() const { return root_.path() / kLookupFolder; }
    std::filesystem::path referenceFolder() const { return root_.path() / kReferenceFolder; }

    static Loaded load(const std::u16string& pageName) {
        AllocationWatch watch;
        Loaded loaded{DocResourceParser::getResourceLookupFiles(),
                      DocResourceParser::getResourceFile(pageName),
                      DocResourceParser::getResourceFile(u"control"),
                      {}};
        loaded.memory = watch.stats();
        return loaded;
    }

    // The hostile files count as absent: the lookup results and the control pages are what they
    // were without them, and the hostile product has no pages.
    void expectOnlyControl(const Loaded& loaded) const {
        EXPECT_EQ(loaded.lookups, controlOnly_.lookups);
        EXPECT_TRUE(loaded.pages.empty());
        EXPECT_EQ(loaded.controlPages, controlOnly_.controlPages);
    }

    static constexpr const char* kLookupFolder = "docCatalog/referenceapi_lookup";
    static constexpr const char* kReferenceFolder = "docCatalog/referenceapi";

    TempDir root_;
    Loaded controlOnly_;
};

} // namespace refdoc::test
