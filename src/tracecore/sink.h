#pragma once

#include <string>

namespace tracecore {

// outputStorageInterface_i is a place where records go. It is called under the writers' mutex.
class outputStorageInterface_i
{
public:
    virtual ~outputStorageInterface_i() = default;

    // level:    the record's level byte: > < U E D T t N
    // text:     UTF-16
    // function: the innermost open function of the writing thread, UTF-8
    virtual void write(char level, const std::wstring& text, const std::string& function) = 0;
};

} // namespace tracecore
