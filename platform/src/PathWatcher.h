#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace host {

// Notices changes of files that may not exist yet, through inotify.
//
// A file is watched through the folders on the way to it, not by itself: whatever of them or of the symbolic links
// on the way appears, vanishes or is exchanged, and however the file is saved, its folder or one above reports a
// name that is part of the way. Every path has a key, in the words of which changes are told.
//
// wait() and wake() may run on any thread at any time; the caller serialises the other operations.
class PathWatcher {
  public:
    // Something that happened to a name in a watched folder.
    struct Event {
        int folder;
        std::uint32_t mask;
        std::string name;
    };

    enum class Change {
        FolderAppeared,  // whether there is a file in it is for the caller to see
        File,
    };

    struct Watch {
        std::filesystem::path path;  // absolute; one that ends in a slash stands for every file in the folder
        std::string key;
    };

    // Logs one line if the system has no more watchers to give; nothing is then ever noticed.
    PathWatcher();
    PathWatcher(const PathWatcher&) = delete;
    PathWatcher& operator=(const PathWatcher&) = delete;
    ~PathWatcher();

    // False if wait() would never return.
    bool works() const;

    // Says once in the log that changes go unnoticed, with the error of the system that is the reason.
    void complain(int error);

    // Blocks until something happened in a watched folder, or wake() was called.
    std::vector<Event> wait();
    void wake();

    // Watches a further path. What happens to it from now on is noticed.
    void add(const Watch& watch);

    // Watches these paths and no others.
    void replace(const std::vector<Watch>& watches);

    // The keys of the paths that the events concern.
    std::map<std::string, Change> changesIn(const std::vector<Event>& events) const;

  private:
    int watchFolder(const std::filesystem::path& folder);
    std::optional<Change> meaningOf(const Event& event) const;

    const int notifier;
    const int waker;
    bool complained = false;
    std::map<int, std::filesystem::path> folders;                       // by watch descriptor
    std::map<std::pair<int, std::string>, std::set<std::string>> keys;  // by folder and name in it, "" for any name
};

}  // namespace host
