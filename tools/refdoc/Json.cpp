#include "Json.hpp"

#include "Text.hpp"

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

namespace refdoc::tool {
namespace {

namespace json = boost::json;
using namespace reference::property;
using reference::docparser::DocResource;

json::value text(const std::u16string& value) { return json::value(toUtf8(value)); }

template <class Enumeration>
json::value enumText(typename Enumeration::Value value) {
    const std::string_view spelling = Enumeration::toString(value);
    if (spelling.empty()) {
        return nullptr;
    }
    return json::value(json::string_view(spelling.data(), spelling.size()));
}

json::array texts(const std::vector<std::u16string>& values) {
    json::array out;
    for (const auto& value : values) {
        out.push_back(text(value));
    }
    return out;
}

json::object header(const HeaderInfo& info) {
    return json::object{{"productName", text(info.getProductName())},
                        {"baseCode", text(info.getBaseCode())},
                        {"helpFolder", text(info.getHelpFolder())},
                        {"helpLocation", text(info.getHelpLocation())}};
}

json::value item(const RefItemLookup& entry) {
    return json::object{
        {"name", text(entry.getName())},       {"type", enumText<RefEntityType>(entry.getEntityType())},
        {"purpose", text(entry.getPurpose())}, {"deprecated", entry.isDeprecated()},
        {"href", text(entry.getHref())},       {"fcntype", enumText<FunctionType>(entry.getFunctionType())}};
}

json::value item(const RefItem& page) { return toJson(page); }

template <class T>
json::value resources(const std::map<std::u16string, DocResource<T>>& map) {
    json::object out;
    for (const auto& [key, resource] : map) {
        json::object document = header(resource.getHeader());
        json::object items;
        for (const auto& [itemKey, list] : resource.getItems()) {
            json::array array;
            for (const auto& entry : list) {
                array.push_back(item(entry));
            }
            items[toUtf8(itemKey)] = std::move(array);
        }
        document["items"] = std::move(items);
        out[toUtf8(key)] = std::move(document);
    }
    return out;
}

std::string relativeTo(const std::u16string& path, const std::filesystem::path& root) {
    const std::string full = toUtf8(path);
    const std::string prefix = root.string() + "/";
    return full.rfind(prefix, 0) == 0 ? full.substr(prefix.size()) : full;
}

void write(std::ostream& out, const json::value& value, int indent) {
    const std::string pad(static_cast<std::size_t>(indent) * 2, ' ');
    if (const auto* object = value.if_object(); object != nullptr && !object->empty()) {
        out << "{\n";
        bool first = true;
        for (const auto& member : *object) {
            out << (first ? "" : ",\n") << pad << "  " << json::serialize(json::string(member.key())) << ": ";
            write(out, member.value(), indent + 1);
            first = false;
        }
        out << '\n' << pad << '}';
    } else if (const auto* array = value.if_array(); array != nullptr && !array->empty()) {
        out << "[\n";
        bool first = true;
        for (const auto& element : *array) {
            out << (first ? "" : ",\n") << pad << "  ";
            write(out, element, indent + 1);
            first = false;
        }
        out << '\n' << pad << ']';
    } else {
        out << json::serialize(value);
    }
}

} // namespace

json::value toJson(const reference::docparser::DocResourceParser::LookupResourceMap& map) { return resources(map); }

json::value toJson(const reference::docparser::DocResourceParser::RefItemFileMap& map) { return resources(map); }

json::value toJson(const RefItem& page) { return toJson(makePageView(page)); }

namespace {

// Texts as they are; an enumeration's spelling, or null for a value without one.
json::value str(const std::string& value) { return json::value(value); }
json::value spelled(const std::string& value) { return value.empty() ? json::value(nullptr) : json::value(value); }

json::array strs(const std::vector<std::string>& values) {
    json::array out;
    for (const auto& value : values) {
        out.push_back(str(value));
    }
    return out;
}

json::object argument(const PageView::Argument& argument) {
    return json::object{{"name", str(argument.name)},
                        {"purpose", str(argument.purpose)},
                        {"values", strs(argument.values)},
                        {"anchor", str(argument.anchor)}};
}

} // namespace

json::value toJson(const PageView& page) {
    json::array entities;
    for (const auto& entity : page.entities) {
        entities.push_back(json::object{
            {"type", spelled(entity.type)}, {"name", str(entity.name)}, {"fcntype", spelled(entity.functionType)}});
    }
    json::array syntaxGroups;
    for (const auto& group : page.syntaxGroups) {
        syntaxGroups.push_back(json::object{
            {"title", str(group.title)}, {"syntaxType", spelled(group.syntaxType)}, {"lines", strs(group.lines)}});
    }
    json::array inputGroups;
    for (const auto& group : page.inputGroups) {
        json::array inputs;
        for (const auto& input : group.arguments) {
            json::object entry = argument(input);
            entry["syntaxType"] = spelled(input.syntaxType);
            entry["defaultValue"] = str(input.defaultValue);
            entry["nameValuePair"] = input.nameValuePair;
            inputs.push_back(std::move(entry));
        }
        inputGroups.push_back(json::object{{"title", str(group.title)}, {"inputs", std::move(inputs)}});
    }
    json::array outputs;
    for (const auto& output : page.outputs) {
        json::object entry = argument(output);
        entry["syntaxType"] = spelled(output.syntaxType);
        outputs.push_back(std::move(entry));
    }
    json::array propertyGroups;
    for (const auto& group : page.propertyGroups) {
        json::array properties;
        for (const auto& property : group.arguments) {
            json::object entry = argument(property);
            entry["defaultValue"] = str(property.defaultValue);
            properties.push_back(std::move(entry));
        }
        propertyGroups.push_back(json::object{{"title", str(group.title)}, {"properties", std::move(properties)}});
    }
    json::array seeAlso;
    for (const auto& link : page.seeAlso) {
        seeAlso.push_back(json::object{{"url", str(link.url)}, {"name", str(link.name)}});
    }
    json::array examples;
    for (const auto& example : page.examples) {
        examples.push_back(json::object{
            {"url", str(example.url)}, {"openCommand", str(example.openCommand)}, {"title", str(example.title)}});
    }
    json::array parameters;
    for (const auto& parameter : page.parameters) {
        json::object entry = argument(parameter);
        entry["defaultValue"] = str(parameter.defaultValue);
        parameters.push_back(std::move(entry));
    }
    return json::object{
        {"href", str(page.href)},
        {"entities", std::move(entities)},
        {"packageName", str(page.packageName)},
        {"purpose", str(page.purpose)},
        {"introduced", str(page.introduced)},
        {"description", str(page.description)},
        {"thumbnail", json::object{{"fileRef", str(page.thumbnailFileRef)}, {"altText", str(page.thumbnailAltText)}}},
        {"deprecationStatus", spelled(page.deprecationStatus)},
        {"syntaxGroups", std::move(syntaxGroups)},
        {"inputGroups", std::move(inputGroups)},
        {"outputs", std::move(outputs)},
        {"classPropertyGroups", std::move(propertyGroups)},
        {"seeAlso", std::move(seeAlso)},
        {"examples", std::move(examples)},
        {"parameters", std::move(parameters)},
    };
}

json::value toJson(const reference::docparser::FileDiagnostic& file, const std::filesystem::path& root) {
    using reference::docparser::toString;
    const auto name = [](std::string_view value) { return json::value(json::string_view(value.data(), value.size())); };
    json::object out{
        {"source", name(toString(file.source))},
        {"path", relativeTo(file.path, root)},
        {"entry", file.entry.empty() ? json::value(nullptr) : text(file.entry)},
        {"productName", text(file.productName)},
        {"localeVariant", file.localeVariant},
        {"dropped", file.dropped()},
        {"reason", file.dropped() ? name(toString(file.dropReason)) : json::value(nullptr)},
        {"message", file.message.empty() ? json::value(nullptr) : json::value(file.message)},
        {"jsonPath", file.jsonPath.empty() ? json::value(nullptr) : json::value(file.jsonPath)},
    };
    if (file.line != 0) {
        out["line"] = file.line;
        out["column"] = file.column;
        out["offset"] = file.offset;
    }
    out["documents"] = texts(file.documentKeys);
    return out;
}

void writeJson(std::ostream& out, const json::value& value) {
    write(out, value, 0);
    out << '\n';
}

} // namespace refdoc::tool
