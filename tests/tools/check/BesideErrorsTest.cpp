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
#include "tools/vig/findings/WarningNames.h"
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

// Returns the path of the transition that the path lies in, if it does.
std::string transitionIn(const std::string& path) {
    const std::size_t list = path.find("transitions[");
    return list == std::string::npos ? "" : path.substr(0, path.find(']', list));
}

bool isRefusal(const Finding& finding) {
    return finding.severity == Severity::Error && finding.name != "endless-entering";
}

bool has(const std::vector<Finding>& all, const Finding& wanted) {
    return std::ranges::any_of(all, [&](const Finding& each) {
        return each.name == wanted.name && each.place.path == wanted.place.path && each.severity == wanted.severity &&
               each.message == wanted.message;
    });
}

TEST(Warnings, BesideAnErrorAreThoseThatAreThereWithoutIt) {
    const auto registry = libraryRegistry();
    const auto catalogue = Catalogue::builtIn();
    const auto findAll = [&](const Json::Value& root) {
        return findingsIn(DocumentText("", Json::FastWriter().write(root)), registry, catalogue);
    };
    support::Mutator mutator;
    support::DocumentGenerator generator(mutator, 1'000'000'000);
    std::map<std::string, std::pair<int, int>> counts;  // of each name: those that are told, and all
    for (int round = 0; round < 1'000; ++round) {
        std::vector<std::string> transitions(2 + mutator.draw(5));
        std::ranges::generate(transitions, [&] { return generator.elementOf("transitions"); });
        Json::Value root;
        ASSERT_FALSE(readJson(support::documentOf(transitions), root));
        const Findings without = findAll(root);
        std::vector<Member> members;
        collectMembers(root["configs"][0]["payload"], kPayloadShape, "configs[0].payload", members);
        const auto& [object, key, path] = members[mutator.draw(members.size())];
        if (mutator.draw(2) == 0) {
            object->removeMember(key);
        } else {
            (*object)[key] = mutator.draw(2) == 0 ? Json::Value("nope") : Json::Value(Json::objectValue);
        }
        const Findings with = findAll(root);
        if (std::ranges::none_of(with.all, isRefusal) || std::ranges::any_of(without.all, isRefusal)) {
            continue;
        }
        ASSERT_EQ(with.unconfirmed, std::vector<std::string>());
        for (const Finding& each : with.all) {
            EXPECT_TRUE(isRefusal(each) || has(without.all, each)) << each.place.path << ": " << each.message << "\n"
                                                                   << path << "\n"
                                                                   << root;
        }
        for (const Finding& each : without.all) {
            const bool isTold = has(with.all, each);
            const auto* const name = std::ranges::find(kWarningNames, each.name, &WarningName::name);
            const bool isElsewhere = transitionIn(path) != "" && transitionIn(path) != transitionIn(each.place.path);
            EXPECT_TRUE(isTold || !isElsewhere || name->basis > Basis::Event) << each.place.path << "\n" << root;
            counts[each.name].first += isTold ? 1 : 0;
            ++counts[each.name].second;
        }
    }
    // The rest rests on what is refused.
    for (const auto& [name, count] : counts) {
        EXPECT_GE(4 * count.first, count.second) << name << " " << count.first;
    }
    EXPECT_EQ(counts.size(), 19U);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
