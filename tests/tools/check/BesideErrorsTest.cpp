#include <gtest/gtest.h>
#include <json/writer.h>

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/DocumentGenerator.h"
#include "tests/support/Documents.h"
#include "tests/support/Mutator.h"
#include "tools/vig/check/DocumentCheck.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/document/StrictJson.h"
#include "tools/vig/findings/DocumentShape.h"
#include "vig/parsers/JsonText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// It is a member that the library reads, in an object of a document.
struct Member {
    Json::Value* object;
    std::string key;
    std::string path;
};

void collectMembers(Json::Value& object, const Shape& shape, const std::string& path, std::vector<Member>& members) {
    for (const Shape::Member& member : shape.members) {
        const std::string key(member.key), place = StrictJson::member(path, key);
        if (!object.isMember(key)) {
            continue;
        }
        members.push_back({&object, key, place});
        Json::Value& value = object[key];
        if (member.kind == Shape::Kind::Object) {
            collectMembers(value, *member.inside, place, members);
        }
        for (Json::ArrayIndex index = 0; member.kind == Shape::Kind::List && index < value.size(); ++index) {
            collectMembers(value[index], *member.inside, place + "[" + std::to_string(index) + "]", members);
        }
    }
}

TEST(Warnings, BesideAnErrorAreThoseThatAreThereWithoutIt) {
    const auto registry = libraryRegistry();
    const auto catalogue = Catalogue::builtIn();
    support::Mutator mutator;
    support::DocumentGenerator generator(mutator, 1'000'000'000);
    std::map<std::string, std::pair<int, int>> counts;  // by name: those that are kept, and all
    int documents = 0;
    for (int round = 0; round < 4'000; ++round) {
        std::vector<std::string> transitions(2 + mutator.draw(5));
        std::ranges::generate(transitions, [&] { return generator.elementOf("transitions"); });
        Json::Value root;
        if (readJson(support::documentOf(transitions), root)) {
            continue;
        }
        const std::string whole = Json::FastWriter().write(root);
        std::vector<Member> members;
        collectMembers(root["configs"][0]["payload"], kPayloadShape, "configs[0].payload", members);
        const Member& broken = members[mutator.draw(members.size())];
        Json::Value& value = (*broken.object)[broken.key];
        switch (mutator.draw(3)) {
            case 0:
                broken.object->removeMember(broken.key);
                break;
            case 1:
                value = "nope";
                break;
            default:
                value = Json::objectValue;
        }
        const auto found = findingsIn(DocumentText("", Json::FastWriter().write(root)), registry, catalogue);
        const auto before = findingsIn(DocumentText("", whole), registry, catalogue);
        const auto isRefusal = [](const Finding& each) {
            return each.severity == Severity::Error && each.name != "endless-entering";
        };
        if (std::ranges::none_of(found.all, isRefusal) || std::ranges::any_of(before.all, isRefusal)) {
            continue;
        }
        ASSERT_EQ(found.unconfirmed, std::vector<std::string>());
        ++documents;
        const auto has = [&](const std::vector<Finding>& all, const Finding& wanted) {
            return std::ranges::any_of(all, [&](const Finding& each) {
                return each.name == wanted.name && each.place.path == wanted.place.path &&
                       each.severity == wanted.severity && each.message == wanted.message;
            });
        };
        for (const Finding& each : found.all) {
            if (!isRefusal(each) && !has(before.all, each)) {
                std::cerr << "NEW " << each.name << " " << each.place.path << ": " << each.message << " | broken " << broken.path << "\n" << whole;
                for (auto& b : before.all) std::cerr << "    " << b.name << " " << b.place.path << ": " << b.message << "\n";
            }
        }
        for (const Finding& each : before.all) {
            auto& [kept, all] = counts[each.name];
            ++all;
            kept += has(found.all, each) ? 1 : 0;
        }
    }
    std::cerr << documents << " documents\n";
    for (const auto& [name, count] : counts) {
        std::cerr << name << " " << count.first << " of " << count.second << "\n";
    }
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
