#pragma once

#include <span>
#include <string_view>

namespace Brenta::OS::VIG::Tool {

enum class Layer { Response, Config, Payload, Machine, Transition, Filter, Operand, Action, Parameter };

// It tells which keys the library reads in an object of a rule document.
struct Shape {
    enum class Kind {
        Value,   // whatever the library makes of it
        Name,    // a string that is looked up elsewhere, or not at all
        Object,  // of the shape `inside`
        List,    // of objects of the shape `inside`
    };

    struct Member {
        std::string_view key;
        Kind kind = Kind::Value;
        const Shape* inside = nullptr;
    };

    Layer layer;
    std::span<const Member> members;
    std::string_view accepted;  // an object that the library accepts, whose members can be exchanged one by one
};

inline constexpr Shape::Member kOperandMembers[] = {{"type"}, {"value"}};
inline constexpr Shape kOperandShape{Layer::Operand, kOperandMembers, R"({"type":"constant","value":"0"})"};

inline constexpr Shape::Member kFilterMembers[] = {{"operator"},
                                                   {"value_type"},
                                                   {"operand1", Shape::Kind::Object, &kOperandShape},
                                                   {"operand2", Shape::Kind::Object, &kOperandShape}};
inline constexpr Shape kFilterShape{
    Layer::Filter, kFilterMembers,
    R"({"operator":"==","value_type":"string","operand1":{"type":"envvar","value":"x"},)"
    R"("operand2":{"type":"constant","value":"0"}})"};

inline constexpr Shape::Member kParameterMembers[] = {{"type"}, {"value"}};
inline constexpr Shape kParameterShape{Layer::Parameter, kParameterMembers, R"({"type":"string","value":"0"})"};

inline constexpr Shape::Member kActionMembers[] = {{"name", Shape::Kind::Name},
                                                   {"parameters", Shape::Kind::List, &kParameterShape}};
inline constexpr Shape kActionShape{Layer::Action, kActionMembers, R"({"name":"x","parameters":[]})"};

inline constexpr Shape::Member kTransitionMembers[] = {{"from_state", Shape::Kind::Name},
                                                       {"to_state", Shape::Kind::Name},
                                                       {"event", Shape::Kind::Name},
                                                       {"filters", Shape::Kind::List, &kFilterShape},
                                                       {"actions", Shape::Kind::List, &kActionShape}};
inline constexpr Shape kTransitionShape{
    Layer::Transition, kTransitionMembers,
    R"({"from_state":"start","to_state":"end","event":"x","filters":[],"actions":[]})"};

inline constexpr Shape::Member kMachineMembers[] = {{"transitions", Shape::Kind::List, &kTransitionShape}};
inline constexpr Shape kMachineShape{Layer::Machine, kMachineMembers, R"({"transitions":[]})"};

inline constexpr Shape::Member kPayloadMembers[] = {{"id"}, {"data", Shape::Kind::Object, &kMachineShape}};
inline constexpr Shape kPayloadShape{Layer::Payload, kPayloadMembers, R"({"id":1,"data":{"transitions":[]}})"};

inline constexpr Shape::Member kConfigMembers[] = {{"id"}, {"payload", Shape::Kind::Object, &kPayloadShape}};
inline constexpr Shape kConfigShape{Layer::Config, kConfigMembers,
                                    R"({"id":1,"payload":{"id":1,"data":{"transitions":[]}}})"};

inline constexpr Shape::Member kResponseMembers[] = {{"configs", Shape::Kind::List, &kConfigShape}};
inline constexpr Shape kResponseShape{Layer::Response, kResponseMembers, R"({"configs":[]})"};

}  // namespace Brenta::OS::VIG::Tool
