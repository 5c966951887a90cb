#include "murgeo/BasicServices.h"

#include <atomic>
#include <mutex>

namespace murgeo {

namespace {
std::atomic<int> s_registrations{0};
std::mutex s_directoryMutex;
std::string s_projDirectory;
} // namespace

void BasicServices::Register()
{
    s_registrations.fetch_add(1, std::memory_order_acq_rel);
}

void BasicServices::Unregister()
{
    int n = s_registrations.load(std::memory_order_acquire);
    while (n > 0 && !s_registrations.compare_exchange_weak(n, n - 1, std::memory_order_acq_rel))
    {
    }
}

bool BasicServices::IsRegistered()
{
    return s_registrations.load(std::memory_order_acquire) > 0;
}

void BasicServices::SetProjResourceDirectory(const std::string& directory)
{
    std::lock_guard<std::mutex> lock(s_directoryMutex);
    s_projDirectory = directory;
}

std::string BasicServices::GetProjResourceDirectory()
{
    std::lock_guard<std::mutex> lock(s_directoryMutex);
    return s_projDirectory;
}

} // namespace murgeo
