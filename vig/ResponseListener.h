#pragma once

#include <deviceconfig/DeviceConfig.h>

#include <functional>

namespace Brenta::OS::VIG {

// Passes the change notifications of the device configuration on to a handler. The device-configuration
// library calls it on a thread of its own and shares its ownership, so it is made with std::make_shared.
class ResponseListener : public com::korvel::deviceconfig::OnPropertiesChangeListener {
  public:
    // REQUIRES: `changeHandler` is not empty (asserted in debug builds).
    explicit ResponseListener(std::function<void(const com::korvel::deviceconfig::Properties&)> changeHandler);

    void onPropertiesChanged(com::korvel::deviceconfig::Properties properties) override;
    ~ResponseListener() override;

  private:
    const std::function<void(const com::korvel::deviceconfig::Properties&)> handler;
};

}  // namespace Brenta::OS::VIG
