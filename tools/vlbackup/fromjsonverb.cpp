#include "backupjson.h"
#include "shared/toolerror.h"
#include "verbs.h"
#include "writtenfile.h"

#include <algorithm>

namespace {

std::vector<uint8_t> backupOf(const Call& call)
{
    const CInput input(call.input, call.in);
    const std::span<const uint8_t> bytes = input.Bytes();
    const auto first = std::ranges::find_if(bytes, [](uint8_t c) { return c > ' '; });
    if (first == bytes.end() || (*first != '{' && *first != '['))
        throw CToolError(shownInput(call.input) + " is no JSON document: it is " +
                             describeBytes(bytes),
                         "vlbackup to-json writes one");
    try {
        return backupOfJson({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    } catch (const CToolError& error) {
        throw CToolError(shownInput(call.input) + ": " + error.What(), error.Hint());
    }
}

} // namespace

int verbs::fromJson(const Call& call)
{
    const std::vector<uint8_t> backup = backupOf(call);
    CWrittenFile file(call);
    file.Stream().write(reinterpret_cast<const char*>(backup.data()),
                        static_cast<std::streamsize>(backup.size()));
    file.Complete("vlbackup-from-json-1");
    return exitStatus::good;
}
