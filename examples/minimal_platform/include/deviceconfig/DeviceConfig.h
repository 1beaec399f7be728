#pragma once

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>

namespace com::korvel::deviceconfig {

// It holds the one property that there is.
struct Properties {
    std::string getString(const std::string& name, const std::string& fallback) const;

    std::optional<std::string> response;  // of this platform alone
};

class OnPropertiesChangeListener : public std::enable_shared_from_this<OnPropertiesChangeListener> {
  public:
    virtual void onPropertiesChanged(Properties properties) = 0;
    virtual ~OnPropertiesChangeListener() = default;
};

// It is always available.
class DeviceConfig {
  public:
    DeviceConfig() = default;
    virtual ~DeviceConfig() = default;

    bool isDeviceConfigAvailable();
    Properties getProperties(const std::string& ns, std::initializer_list<std::string> names);
    void addOnPropertiesChangeListener(const std::string& ns,
                                       const std::shared_ptr<OnPropertiesChangeListener>& listener);
    void removeOnPropertiesChangeListener(const std::shared_ptr<OnPropertiesChangeListener>& listener);
};

}  // namespace com::korvel::deviceconfig
