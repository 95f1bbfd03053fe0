#include "formats/backup/backupview.h"
#include "formats/der/dernode.h"
#include "formats/trace/recordformat.h"
#include "formats/trace/tracereader.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

// One use of each portable format on a fixed input, for instructions.py to count: the name of the
// function is what is counted, and its input's size is printed.
namespace {

using bytes_t = std::vector<uint8_t>;

std::u16string numbered(std::u16string text, size_t number)
{
    for (const char digit : std::to_string(number))
        text += static_cast<char16_t>(digit);
    return text + u".vlm";
}

void buildBackup(CDerTree& backup, const bytes_t& content)
{
    backup.SetSequence(4);
    backup.Child(0).SetSequence(1000);
    for (size_t i = 0; i < 1000; ++i) {
        CDerNode& pair = backup.Child(0).Child(i);
        pair.SetSequence(2);
        pair.Child(0).SetWide(numbered(u"template", i));
        pair.Child(1).SetOctets(content);
    }
    backup.Child(1).SetSequence(1000);
    for (size_t i = 0; i < 1000; ++i) {
        CDerNode& link = backup.Child(1).Child(i);
        link.SetSequence(6);
        link.Child(2).SetWide(numbered(u"template", i));
        for (const size_t text : {0, 1, 4})
            link.Child(text).SetWide(u"https://bank.example/");
        link.Child(3).SetInteger(static_cast<uint32_t>(i));
        link.Child(5).SetInteger(1);
    }
    backup.Child(2).SetSequence(0);
    backup.Child(3).SetSequence(0);
}

} // namespace

extern "C" {

[[gnu::noinline]] size_t count_encode(const bytes_t& content, bytes_t& encoded)
{
    CDerTree backup;
    buildBackup(backup, content);
    encoded.resize(backup.Measure());
    backup.Write(encoded.data());
    return encoded.size();
}

[[gnu::noinline]] size_t count_decode(const bytes_t& encoded)
{
    CBackupView view;
    if (!view.Decode(encoded) || view.files.size() != 1000 || view.links.size() != 1000)
        std::abort();
    return encoded.size();
}

[[gnu::noinline]] size_t count_scramble(bytes_t& text)
{
    for (size_t at = 0; at < text.size(); at += 64)
        tracecore::scrambleText(text.data() + at, 64);
    return text.size();
}

[[gnu::noinline]] size_t count_read(const bytes_t& trace)
{
    tracecore::traceReader_t reader;
    reader.append(trace);
    reader.finish();
    size_t records = 0;
    while (reader.next())
        ++records;
    if (records != 1002) // with the header, and no damage
        std::abort();
    return trace.size();
}
}

int main()
{
    const bytes_t content(100, 'x');
    bytes_t encoded;
    std::printf("encode %zu\n", count_encode(content, encoded));
    std::printf("decode %zu\n", count_decode(encoded));

    bytes_t text(64 * 1000, 'y');
    std::printf("scramble %zu\n", count_scramble(text));
    constexpr char header[] = "trace3\r\nTrace Ver: 3.0.2\r\n.\r\n";
    bytes_t trace(header, header + sizeof header - 1);
    for (int i = 0; i < 1001; ++i) {
        const uint8_t head[] = {1, 0, 0, 0, 'U', 64, 0};
        trace.insert(trace.end(), head, head + sizeof head);
        trace.insert(trace.end(), text.begin(), text.begin() + 64);
    }
    std::printf("read %zu\n", count_read(trace));
    return 0;
}
