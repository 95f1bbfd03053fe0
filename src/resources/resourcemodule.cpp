#include "resources/resourcemodule.h"

#include "common/initorder.h"
#include "common/module.h"

#include <atomic>

namespace {

[[gnu::init_priority(initBaseModule)]] std::atomic<HMODULE> currentModule{thisModule()};

} // namespace

HMODULE resourceModule() noexcept
{
    return currentModule.load(std::memory_order_acquire);
}

HMODULE setResourceModule(HMODULE module) noexcept
{
    return currentModule.exchange(module, std::memory_order_acq_rel);
}
