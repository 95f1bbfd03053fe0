#pragma once

#include <memory>

#include <unknwn.h>

struct releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface> using counted = std::unique_ptr<Interface, releaser>;
