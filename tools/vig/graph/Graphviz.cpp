#include "tools/vig/graph/Pictures.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <iterator>
#include <optional>

#include "tools/vig/io/Descriptor.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// It is a stream to or from a program: a socket rather than a pipe, because writing to a program that has gone is an
// error then like any other, and no signal.
struct Stream {
    std::optional<Descriptor> ours;
    std::optional<Descriptor> theirs;

    Stream() {
        int ends[2] = {-1, -1};
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0) {
            ours.emplace(ends[0]);
            theirs.emplace(ends[1]);
        }
    }
};

struct Streams {
    Stream in;
    Stream out;
    Stream err;

    bool areOpen() const { return in.ours && out.ours && err.ours; }

    // Otherwise the end of what the program writes could not be seen.
    void closeTheirs() {
        for (Stream* const each : {&in, &out, &err}) {
            each->theirs.reset();
        }
    }
};

// Returns 0, or the errno value that tells why the program does not run.
int spawnDot(const std::string& format, const Streams& streams, pid_t& process) {
    std::string name = "dot";
    std::string option = "-T" + format;
    char* const arguments[] = {name.data(), option.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, streams.in.theirs->get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, streams.out.theirs->get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, streams.err.theirs->get(), STDERR_FILENO);
    // The tool ignores these signals, which a program would inherit.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    sigaddset(&signals, SIGXFSZ);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    const int error = posix_spawnp(&process, name.c_str(), &actions, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

bool mustWait() {
    return errno == EAGAIN || errno == EINTR;
}

// Takes what was sent off the text, and the stream out of the poll when there is no more to send.
void sendSome(pollfd& stream, std::string_view& text) {
    if (stream.revents == 0) {
        return;
    }
    const ssize_t sent = send(stream.fd, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent >= 0) {
        text.remove_prefix(static_cast<std::size_t>(sent));
    } else if (!mustWait()) {
        text = {};
    }
    if (text.empty()) {
        shutdown(stream.fd, SHUT_WR);
        stream.fd = -1;
    }
}

// Takes the stream out of the poll at its end.
void receiveSome(pollfd& stream, std::string& text) {
    if (stream.revents == 0) {
        return;
    }
    char piece[1 << 16];
    const ssize_t received = recv(stream.fd, piece, sizeof piece, MSG_DONTWAIT);
    if (received > 0) {
        text.append(piece, static_cast<std::size_t>(received));
    } else if (received == 0 || !mustWait()) {
        stream.fd = -1;
    }
}

// Sends the graph and receives what comes of it, all at once so that nobody waits for the other. Returns false if it
// was interrupted.
bool exchange(std::string_view dot, const Streams& streams, Rendering& rendering, const Interruption& interruption) {
    pollfd polled[] = {{streams.in.ours->get(), POLLOUT, 0},
                       {streams.out.ours->get(), POLLIN, 0},
                       {streams.err.ours->get(), POLLIN, 0},
                       {interruption.descriptor(), POLLIN, 0}};
    while (polled[1].fd >= 0 || polled[2].fd >= 0) {
        const bool isReady = poll(polled, std::size(polled), -1) > 0;
        if (interruption.requested()) {
            return false;
        }
        if (isReady) {
            sendSome(polled[0], dot);
            receiveSome(polled[1], rendering.image);
            receiveSome(polled[2], rendering.messages);
        }
    }
    return true;
}

// Returns true if the program has ended well.
bool awaitEnd(pid_t process) {
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

Rendering renderGraph(std::string_view dot, const std::string& format, const Interruption& interruption) {
    Streams streams;
    if (!streams.areOpen()) {
        return {Rendering::Status::Failed, {}, systemError(errno)};
    }
    pid_t process = 0;
    if (const int error = spawnDot(format, streams, process)) {
        return {error == ENOENT ? Rendering::Status::Missing : Rendering::Status::Failed, {}, systemError(error)};
    }
    streams.closeTheirs();
    Rendering rendering{Rendering::Status::Done, {}, {}};
    if (!exchange(dot, streams, rendering, interruption)) {
        kill(process, SIGTERM);
        awaitEnd(process);
        rendering.status = Rendering::Status::Interrupted;
    } else if (!awaitEnd(process)) {
        rendering.status = Rendering::Status::Failed;
    }
    return rendering;
}

}  // namespace Brenta::OS::VIG::Tool
