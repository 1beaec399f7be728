#include "bench/Machine.h"

#include <cstdlib>
#include <iostream>

#include "vig/VIGManager.h"

namespace bench {

Machine machineOf(const std::string& document) {
    auto configs = std::make_shared<std::vector<std::unique_ptr<Brenta::OS::VIG::VIGConfig>>>(
        Brenta::OS::VIG::VIGManager().parseResponse(document));
    if (configs->empty()) {
        std::cerr << "refused: " << document << "\n";
        std::exit(1);
    }
    auto* const fsm = configs->front()->getConfigPayload()->getFiniteStateMachine();
    return {std::move(configs), fsm};
}

}  // namespace bench
