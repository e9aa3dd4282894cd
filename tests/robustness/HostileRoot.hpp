#pragma once

// A documentation root with one sound product, "control", as a lookup file and a page file. Tests
// put a hostile product beside it and check that loads still return, leave the control product as
// it was and stay within a memory bound.

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
        root_.write(lookupFolder() / "control.json",
                    fileText(lookupDocument({"Control", "CTL", "control"}, {{"probe", "Always here"}})));
        root_.write(referenceFolder() / "control.json",
                    fileText(pageDocument({"Control", "CTL", "control"}, {{"control/probe.html", "Always here"}})));
        DocResourceParser::setReferenceRoot(root_.u16());
        DocResourceParser::setTestProducts({u"control", u"hostile"}, {});
        controlOnly_ = load(u"control");
        ASSERT_EQ(controlOnly_.lookups.installedResources.size(), 1u);
        ASSERT_EQ(controlOnly_.controlPages.size(), 1u);
    }

    std::filesystem::path lookupFolder() const { return root_.path() / "docCatalog/referenceapi_lookup"; }
    std::filesystem::path referenceFolder() const { return root_.path() / "docCatalog/referenceapi"; }

    static Loaded load(const std::u16string& pageName) {
        AllocationWatch watch;
        Loaded loaded{DocResourceParser::getResourceLookupFiles(), DocResourceParser::getResourceFile(pageName),
                      DocResourceParser::getResourceFile(u"control"), {}};
        loaded.memory = watch.stats();
        return loaded;
    }

    // The hostile files count as absent: the results are those without them.
    void expectOnlyControl(const Loaded& loaded) const {
        EXPECT_EQ(loaded.lookups, controlOnly_.lookups);
        EXPECT_TRUE(loaded.pages.empty());
        EXPECT_EQ(loaded.controlPages, controlOnly_.controlPages);
    }

    TempDir root_;
    Loaded controlOnly_;
};

} // namespace refdoc::test
