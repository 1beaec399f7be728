// This program is linked with the library and without it, for what its loading costs. The reference keeps the linker
// from dropping it.
#ifdef WITH_VIG
#include "rulesengine/FiniteStateMachine.h"

int main() {
    return Brenta::OS::RulesEngine::FiniteStateMachine::STATE_START.empty() ? 1 : 0;
}
#else
int main() {}
#endif
