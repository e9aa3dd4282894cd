#include <reference/docparser/DocResource.hpp>
#include <reference/property/HeaderInfo.hpp>
#include <reference/property/RefItem.hpp>
#include <reference/property/RefItemLookup.hpp>

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

namespace {

using namespace reference::property;
using reference::docparser::DocResource;

EngineHandle newHandle() { return EngineHandle(new engine::EngineValue()); }

ObjectInfo info(const char16_t* name) {
    return ObjectInfo(name, u"purpose", {u"v1", u"v2"}, std::u16string(u"ref/a.html#") + name);
}

RefItem sampleItem() {
    std::vector<InputGroup> inputs;
    inputs.emplace_back(u"Inputs", std::vector<Input>{Input(info(u"x"), SyntaxType::Required, u"1", false)});
    std::vector<ClassPropertyGroup> propGroups;
    propGroups.emplace_back(u"Appearance", std::vector<ClassProperty>{ClassProperty(info(u"Color"), u"red")});
    return RefItem(u"ref/a.html", {RefEntity(RefEntityType::Function, u"a", FunctionType::Ordinary)}, u"pkg", u"Do a",
                   u"R1", u"Long text", u"thumb.png", u"Thumb", DeprecationStatus::Current,
                   {SyntaxGroup(u"Syntax", SyntaxType::Function, {u"a(x)"})}, std::move(inputs),
                   {Output(info(u"y"), SyntaxType::Output)}, std::move(propGroups), {SeeAlso(u"b.html", u"b")},
                   {Example(u"ex.html", u"open ex", u"Example")}, {Parameter(info(u"p"), u"0")});
}

// Records move without throwing, so vectors of them move (not copy) their elements on growth.
template <class... T>
constexpr bool moveWithoutThrowing = ((std::is_nothrow_move_constructible_v<T> &&
                                       std::is_nothrow_move_assignable_v<T>)&&...);
static_assert(moveWithoutThrowing<HeaderInfo, RefItemLookup, ObjectInfo, Input, InputGroup, Output, Parameter,
                                  ClassProperty, ClassPropertyGroup, SyntaxGroup, SeeAlso, Example, RefEntity, RefItem,
                                  DocResource<RefItem>, DocResource<RefItemLookup>>);

// Handles move with their record, are released exactly once, and every slotted record releases
// its own on destruction (a rejected slot's handle too, by the temporary that held it).
TEST(Records, HandlesMoveWithTheirRecordAndAreReleasedExactlyOnce) {
    const auto releasesBefore = engine::EngineValue::releaseCount();
    const auto liveBefore = engine::EngineValue::liveCount();
    constexpr int kItems = 100;
    {
        RefItem source = sampleItem();
        source.engineValues().set(9, newHandle());
        const RefItem copy = source;
        const RefItem moved(std::move(source));
        EXPECT_EQ(moved, copy);
        EXPECT_TRUE(source.engineValues().allEmpty());

        std::vector<RefItem> items; // no reserve: growth moves the elements several times
        for (int i = 0; i < kItems; ++i) {
            RefItem item = sampleItem();
            item.engineValues().set(0, newHandle());
            item.engineValues().set(9, newHandle());
            items.push_back(std::move(item));
        }
        EXPECT_EQ(engine::EngineValue::liveCount() - liveBefore, 2u * kItems + 1);
        EXPECT_EQ(engine::EngineValue::releaseCount(), releasesBefore) << "a move released a handle";
        EXPECT_EQ(items.back().engineValues().get(0)->useCount(), 1u);

        Output out(info(u"o"), SyntaxType::Output);
        out.engineValues().set(0, newHandle());
        SyntaxGroup group(u"t", SyntaxType::Function, {});
        group.engineValues().set(1, newHandle());
        RefEntity entity(RefEntityType::Class, u"c", FunctionType::Unspecified);
        EXPECT_THROW(entity.engineValues().set(2, newHandle()), std::out_of_range);
    }
    // The lone item's handle had two owners, the moved item and its copy; then the other three.
    EXPECT_EQ(engine::EngineValue::releaseCount() - releasesBefore, 2u * kItems + 2 + 3);
    EXPECT_EQ(engine::EngineValue::liveCount(), liveBefore);
}

} // namespace
