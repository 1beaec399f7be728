#pragma once

#include <gtest/gtest.h>
#include <json/reader.h>
#include <json/value.h>

#include <memory>
#include <string>
#include <vector>

// What the JSON library makes of a text, to compare with.
struct Reading {
    bool accepted = false;
    Json::Value value = {};
    std::string report = {};
};

inline Reading readJson(const std::string& text, const Json::CharReaderBuilder& builder = {}) {
    Reading reading;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    reading.accepted = reader->parse(text.data(), text.data() + text.size(), &reading.value, &reading.report);
    return reading;
}

inline Json::Value json(const std::string& text) {
    const Reading reading = readJson(text);
    EXPECT_TRUE(reading.accepted) << reading.report << text;
    return reading.value;
}

// The object with one member replaced, or removed if `text` is empty.
inline Json::Value with(Json::Value object, const std::string& key, const std::string& text) {
    if (text.empty()) {
        object.removeMember(key);
    } else {
        object[key] = json(text);
    }
    return object;
}

// The messages with "{}" replaced by the value as log lines show it.
inline std::vector<std::string> shown(std::vector<std::string> messages, const Json::Value& value) {
    for (std::string& message : messages) {
        if (const std::size_t place = message.find("{}"); place != std::string::npos) {
            message.replace(place, 2, value.toStyledString());
        }
    }
    return messages;
}
