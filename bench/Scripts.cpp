#include <benchmark/benchmark.h>
#include <muParser.h>

#include <array>
#include <lua.hpp>
#include <memory>
#include <string>
#include <vector>

#include "bench/BenchEvent.h"
#include "bench/Machine.h"
#include "bench/Rules.h"
#include "bench/Scenario.h"

// The rule of three integer conditions is a script here, which a service would embed in place of the library.
namespace bench {

namespace {

// Joins the conditions, each written by `write`.
std::string joined(const char* separator, const auto& write) {
    std::string text;
    for (const Condition& condition : conditions(Kind::Integer, 3, false)) {
        text += (text.empty() ? "" : separator) + write(condition);
    }
    return text;
}

class LuaRule {
  public:
    explicit LuaRule(const Event& observed) : event(observed), state(luaL_newstate()) {
        luaL_openlibs(state);
        lua_pushlightuserdata(state, const_cast<Event*>(&event));
        lua_pushcclosure(state, readAttribute, 1);
        lua_setglobal(state, "int64");
        const std::string condition = joined(" and ", [](const Condition& each) {
            const std::string op = each.op == std::string("!=") ? "~=" : each.op;
            return std::string("int64('") + each.attribute + "') " + op + " " + each.constant;
        });
        const std::string chunk = "local int64 = int64\nreturn function() return " + condition + " end";
        if (luaL_dostring(state, chunk.c_str()) != 0) {
            std::abort();
        }
        function = luaL_ref(state, LUA_REGISTRYINDEX);
    }
    LuaRule(const LuaRule&) = delete;
    LuaRule& operator=(const LuaRule&) = delete;
    ~LuaRule() { lua_close(state); }

    bool operator()() const {
        lua_rawgeti(state, LUA_REGISTRYINDEX, function);
        const bool result = lua_pcall(state, 0, 1, 0) == 0 && lua_toboolean(state, -1) != 0;
        lua_pop(state, 1);
        return result;
    }

  private:
    static int readAttribute(lua_State* lua) {
        const auto* const observed = static_cast<const Event*>(lua_touserdata(lua, lua_upvalueindex(1)));
        std::size_t size = 0;
        const char* const name = lua_tolstring(lua, 1, &size);
        if (const auto value = observed->getInt64Attr({name, size})) {
            lua_pushnumber(lua, static_cast<lua_Number>(*value));
        } else {
            lua_pushnil(lua);
        }
        return 1;
    }

    const Event& event;
    lua_State* const state;
    int function = 0;
};

class MuParserRule {
  public:
    explicit MuParserRule(const Event& observed) : event(observed) {
        for (std::size_t i = 0; i < kNames.size(); ++i) {
            parser.DefineVar(kNames[i], &values[i]);
        }
        parser.SetExpr(joined(" && ", [](const Condition& each) {
            return std::string(each.attribute) + " " + each.op + " " + each.constant;
        }));
        parser.Eval();  // compiles it
    }

    bool operator()() {
        for (std::size_t i = 0; i < kNames.size(); ++i) {
            values[i] = static_cast<double>(event.getInt64Attr(kNames[i]).value_or(0));
        }
        return parser.Eval() != 0;
    }

  private:
    static constexpr std::array kNames = {"vmRssKB", "vmSwapKB", "pid"};

    const Event& event;
    std::array<double, kNames.size()> values{};
    mu::Parser parser;
};

template <typename Rule>
Scenario scenarioOf(const char* name) {
    return {name, 256, []() -> Scenario::Loop {
                auto event = std::make_shared<MemoryEvent>();
                auto rule = std::make_shared<Rule>(*event);
                if (!(*rule)()) {
                    std::abort();
                }
                return [event, rule](std::size_t times) {
                    return timed(times, [&] { benchmark::DoNotOptimize((*rule)()); });
                };
            }};
}

}  // namespace

void addScripts(std::vector<Scenario>& scenarios) {
    scenarios.push_back(scenarioOf<LuaRule>("script/LuaJIT"));
    scenarios.push_back(scenarioOf<MuParserRule>("script/muParser"));
}

}  // namespace bench
