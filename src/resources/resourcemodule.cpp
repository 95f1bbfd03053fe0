#include "resources/resourcemodule.h"

#include "common/initorder.h"
#include "common/module.h"

#include <atomic>

namespace {

[[gnu::init_priority(initBaseModule)]] std::atomic<HMODULE> resourceModule{thisModule()};

} // namespace

HMODULE ResourceModule() noexcept
{
    return resourceModule.load(std::memory_order_acquire);
}

HMODULE SetResourceModule(HMODULE module) noexcept
{
    return resourceModule.exchange(module, std::memory_order_acq_rel);
}
