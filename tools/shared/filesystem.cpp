#include "shared/filesystem.h"

#include "formats/text/printable.h"

std::string reasonOf(std::error_code error)
{
    if (error == std::errc::permission_denied || error == std::errc::operation_not_permitted)
        return "permission denied";
    if (error == std::errc::no_such_file_or_directory)
        return "the folder does not exist";
    if (error == std::errc::no_space_on_device)
        return "the disk is full";
    if (error == std::errc::file_exists)
        return "it exists already";
    return printable(error.message());
}
