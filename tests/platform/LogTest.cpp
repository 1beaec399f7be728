#include <android/log.h>
#include <gtest/gtest.h>
#include <host/LogSink.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace {

TEST(Log, GoesToStderrLineByLineUnlessThereIsASink) {
    std::string taken;
    const host::LogSink previous = host::setLogSink([&](int priority, std::string_view tag, std::string_view text) {
        taken += std::to_string(priority) + " " + std::string(tag) + " " + std::string(text);
        errno = EINTR;
    });
    errno = EBADF;
    __android_log_print(ANDROID_LOG_INFO, "VIGManager", "%d: %m\nmore", 7);
    EXPECT_EQ(errno, EBADF);
    host::setLogSink(previous);
    const std::string longText(100'000, 'x');
    testing::internal::CaptureStderr();
    __android_log_print(ANDROID_LOG_ERROR, "VIGManager", "{\n\n%s}\n", longText.c_str());
    const std::string pid = std::to_string(getpid());
    const std::string prefix =
        "E/VIGManager(" + std::string(5 - std::min<std::size_t>(pid.size(), 5), ' ') + pid + "): ";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), prefix + "{\n" + prefix + "\n" + prefix + longText + "}\n");
    EXPECT_EQ(taken, "4 VIGManager 7: Bad file descriptor\nmore");
}

}  // namespace
