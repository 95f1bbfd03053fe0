#pragma once

#include <unknwn.h>

#include <memory>
#include <string>

struct releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface> using counted = std::unique_ptr<Interface, releaser>;

inline const std::wstring classText = L"{42F9948B-B690-4325-A073-63A8BF31FF32}";
