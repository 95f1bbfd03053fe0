// readbackup FILE prints what a restore of a backup would write, and every finding about it. Exit
// status: 0 for a backup that a restore takes whole, 1 for any other, 2 for wrong usage.

#include "formats/backup/backupview.h"
#include "formats/text/printable.h"

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <vector>

int main(int count, char** arguments)
{
    if (count != 2) {
        std::fputs("usage: readbackup FILE\n", stderr);
        return 2;
    }
    std::ifstream file(arguments[1], std::ios::binary);
    const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
    const std::vector<uint8_t> bytes(content.begin(), content.end()); // the view points into them

    CBackupView backup;
    if (!backup.Decode(bytes)) {
        std::printf("refused: %s\n", backup.refusal.c_str());
        return 1;
    }
    std::printf("%s\n", backupVersionText(backup.elementCount).c_str());
    // Names come from whoever wrote the backup: printable keeps them from steering the terminal.
    for (const BackupFile& stored : backup.files)
        std::printf("file  %zu  %s\n", stored.content.size(), printable(stored.target).c_str());
    for (const BackupLink& link : backup.links)
        std::printf("link  %s -> %s\n", printable(link.name).c_str(),
                    printable(link.target).c_str());
    for (const BackupFinding& finding : backup.findings)
        std::printf("found %s: %s\n", finding.where.c_str(), printable(finding.what).c_str());
    return backup.Restorable() ? 0 : 1;
}
