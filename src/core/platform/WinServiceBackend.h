#pragma once

// Standard C++ and Win32 only, so that it cross-compiles and runs without Qt.

#include "platform/ServiceBackend.h"

namespace sable {

// The Windows service control manager of the local machine. Every call opens the manager and the
// service with the rights it needs and closes both before it returns.
class WinServiceBackend final : public ServiceBackend
{
public:
    ServiceReply query(const std::string& name) override;
    ServiceReply start(const std::string& name) override;
    ServiceReply stop(const std::string& name) override;
};

} // namespace sable
