#pragma once

#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace com::korvel::deviceconfig {

// They are the properties of one namespace, by name, as they were when they were read.
class Properties {
  public:
    explicit Properties(std::map<std::string, std::string> valuesByName) : values(std::move(valuesByName)) {}

    // Returns the value of the property, or `fallback` if the property is absent.
    std::string getString(const std::string& name, const std::string& fallback) const {
        const auto value = values.find(name);
        return value != values.end() ? value->second : fallback;
    }

  private:
    std::map<std::string, std::string> values;
};

// The listener is told of changes, and always owned by a std::shared_ptr. The order of the virtual operations is part
// of the binary interface.
class OnPropertiesChangeListener : public std::enable_shared_from_this<OnPropertiesChangeListener> {
  public:
    // It is called on a thread of the client, never on two at once, and with no lock held. It may call the client, but
    // not destroy it.
    virtual void onPropertiesChanged(Properties properties) = 0;

    // REQUIRES: it does not use the client.
    virtual ~OnPropertiesChangeListener() = default;
};

// It is a client of the device configuration: named properties in namespaces. On a host each property is the content of
// a file; <host/Host.h> says which. May be used from any thread.
class DeviceConfig {
  public:
    DeviceConfig();
    DeviceConfig(const DeviceConfig&) = delete;
    DeviceConfig& operator=(const DeviceConfig&) = delete;

    // Waits for a notification under way. No listener is called afterwards.
    virtual ~DeviceConfig();

    // Returns whether the properties can be read now.
    bool isDeviceConfigAvailable();

    // Returns the properties of those names, read afresh; those that do not exist are absent from the result.
    Properties getProperties(const std::string& ns, std::initializer_list<std::string> names);

    // Calls the listener with all properties of the namespace after every later change of one of them. Changes in
    // quick succession may share a call, which then shows the last. The client keeps the listener until it is
    // removed. REQUIRES: the listener is not null.
    void addOnPropertiesChangeListener(const std::string& ns,
                                       const std::shared_ptr<OnPropertiesChangeListener>& listener);

    // Makes no further call to the listener, but does not wait for one that is under way. It may be called from within
    // it. A listener that is not registered is ignored.
    void removeOnPropertiesChangeListener(const std::shared_ptr<OnPropertiesChangeListener>& listener);

  private:
    class Impl;
    const std::unique_ptr<Impl> impl;
};

}  // namespace com::korvel::deviceconfig
