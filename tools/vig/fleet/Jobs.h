#pragma once

#include <cstddef>
#include <functional>

namespace Brenta::OS::VIG::Tool {

class Verb;

// Adds `-j`, with as many as there are cores as the default.
void addJobs(Verb& verb, unsigned& jobs);

// Has several threads do the work, this one included, and returns once all have.
void onThreads(std::size_t threads, const std::function<void()>& work);

}  // namespace Brenta::OS::VIG::Tool
