#include "ziparchive.h"

#include "shared/toolerror.h"

#include <windows.h>
#include <zip.h>

#include <utility>

namespace {

std::stringstream& streamOf(voidpf stream)
{
    return *static_cast<std::stringstream*>(stream);
}

voidpf openStream(voidpf archive, const void*, int)
{
    return archive;
}

uLong readStream(voidpf, voidpf stream, void* bytes, uLong size)
{
    streamOf(stream).read(static_cast<char*>(bytes), static_cast<std::streamsize>(size));
    return static_cast<uLong>(streamOf(stream).gcount());
}

uLong writeStream(voidpf, voidpf stream, const void* bytes, uLong size)
{
    streamOf(stream).write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size));
    return streamOf(stream) ? size : 0;
}

ZPOS64_T tellStream(voidpf, voidpf stream)
{
    return static_cast<ZPOS64_T>(streamOf(stream).tellp());
}

long seekStream(voidpf, voidpf stream, ZPOS64_T offset, int origin)
{
    constexpr std::ios::seekdir origins[] = {std::ios::beg, std::ios::cur, std::ios::end};
    streamOf(stream).seekp(static_cast<std::streamoff>(offset), origins[origin]);
    return streamOf(stream) ? 0 : -1;
}

int closeStream(voidpf, voidpf)
{
    return 0;
}

int errorOf(voidpf, voidpf stream)
{
    return streamOf(stream) ? 0 : -1;
}

void check(int result)
{
    if (result != ZIP_OK)
        throw CToolError("the archive can't be made: error " + std::to_string(result));
}

} // namespace

CZipArchive::CZipArchive()
{
    zlib_filefunc64_def functions = {openStream, readStream,  writeStream, tellStream,
                                     seekStream, closeStream, errorOf,     &m_bytes};
    m_writer = zipOpen2_64(&m_bytes, APPEND_STATUS_CREATE, nullptr, &functions);
    if (!m_writer)
        check(ZIP_INTERNALERROR);
}

CZipArchive::~CZipArchive()
{
    if (m_writer)
        zipClose(m_writer, nullptr);
}

void CZipArchive::Add(const std::string& name, const std::string& content)
{
    SYSTEMTIME now;
    GetLocalTime(&now);
    zip_fileinfo info{};
    info.tmz_date = {now.wSecond, now.wMinute, now.wHour, now.wDay, now.wMonth - 1u, now.wYear};
    check(zipOpenNewFileInZip64(m_writer, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                                Z_DEFLATED, Z_DEFAULT_COMPRESSION, 0));
    check(zipWriteInFileInZip(m_writer, content.data(), static_cast<unsigned>(content.size())));
    check(zipCloseFileInZip(m_writer));
}

std::string CZipArchive::Finish()
{
    check(zipClose(std::exchange(m_writer, nullptr), nullptr));
    return m_bytes.str();
}
