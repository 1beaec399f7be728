#include <android/log.h>
#include <gtest/gtest.h>
#include <host/LogSink.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <vector>

namespace {

std::string prefix(const std::string& letterAndTag) {
    char pid[16];
    std::snprintf(pid, sizeof pid, "(%5d): ", getpid());
    return letterAndTag + pid;
}

TEST(Log, EveryLineOfAMessageHasTheBriefPrefix) {
    const std::string longText(100'000, 'x');
    const struct {
        int priority;
        const char* tag;
        std::string message;
        std::string expected;
    } cases[] = {
        {ANDROID_LOG_ERROR, "VIGManager", "text", prefix("E/VIGManager") + "text\n"},
        {ANDROID_LOG_INFO, "Short", "text", prefix("I/Short   ") + "text\n"},
        {ANDROID_LOG_WARN, nullptr, "text", prefix("W/        ") + "text\n"},
        {77, "VIGManager", "text", prefix("?/VIGManager") + "text\n"},
        {ANDROID_LOG_ERROR, "VIGManager", "", prefix("E/VIGManager") + "\n"},
        {ANDROID_LOG_ERROR, "VIGManager", "{\n\n}\n",
         prefix("E/VIGManager") + "{\n" + prefix("E/VIGManager") + "\n" + prefix("E/VIGManager") + "}\n"},
        {ANDROID_LOG_ERROR, "VIGManager", longText, prefix("E/VIGManager") + longText + "\n"},
    };
    for (const auto& each : cases) {
        testing::internal::CaptureStderr();
        const int length = __android_log_print(each.priority, each.tag, "%s", each.message.c_str());
        EXPECT_EQ(testing::internal::GetCapturedStderr(), each.expected);
        EXPECT_EQ(length, static_cast<int>(each.message.size()));
    }
}

TEST(Log, SinkTakesThePlaceOfStderrUntilThePreviousOneIsPutBack) {
    std::vector<std::string> messages;
    const host::LogSink previous = host::setLogSink([&](int priority, std::string_view tag, std::string_view text) {
        messages.push_back(std::to_string(priority) + " " + std::string(tag) + " " + std::string(text));
        errno = EINTR;
    });
    errno = EBADF;
    __android_log_print(ANDROID_LOG_INFO, "VIGManager", "%d: %m\nmore", 7);
    EXPECT_EQ(errno, EBADF);
    EXPECT_TRUE(host::setLogSink(previous));
    testing::internal::CaptureStderr();
    __android_log_print(ANDROID_LOG_INFO, "VIGManager", "to stderr");
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(messages, std::vector<std::string>{"4 VIGManager 7: Bad file descriptor\nmore"});
}

TEST(Log, MessageUnderWayFinishesInTheSinkThatItBeganWith) {
    std::string message;
    host::setLogSink([&message](int, std::string_view, std::string_view text) {
        host::setLogSink(nullptr);
        message = text;
    });
    __android_log_print(ANDROID_LOG_ERROR, "VIGManager", "text");
    EXPECT_EQ(message, "text");
    EXPECT_FALSE(host::setLogSink(nullptr));
}

}  // namespace
