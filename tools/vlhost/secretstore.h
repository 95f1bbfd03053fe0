#pragma once

#include "neighbours/secretclient.h"
#include "neighbours/vlfpapi.h"

#include <string>

// CSecretStore is the secret store of the policy library for the calling user.
//
// Errors: CToolError
class CSecretStore
{
public:
    CSecretStore();

    bool Exists(const std::wstring& name) const { return m_client.Exists(name); }
    CSecretBytes Read(const std::wstring& name) const;
    void Store(const std::wstring& name, const CSecretBytes& value) const;
    void Delete(const std::wstring& name) const;

private:
    CSecretClient m_client;
};

// readSecretBytes reads all that a file descriptor, such as 0 for standard input, or a file has to
// give, up to 1 MiB. No other copy of it stays in memory.
//
// Errors: CToolError
CSecretBytes readSecretBytes(int descriptor);
CSecretBytes readSecretFile(const std::string& path); // "-" is standard input

// readSecretFrom reads a secret from a file descriptor: UTF-8 text, without one line end after it.
// The value comes back as UTF-16 with its terminating zero, the form of a secret list.
CSecretBytes readSecretFrom(int descriptor);

// writeSecretTo writes such a value as UTF-8 text and a line end.
void writeSecretTo(int descriptor, const CSecretBytes& value);

// encodeSecretList makes the secret list of one secret, for SetPluginData.
CSecretBytes encodeSecretList(const std::wstring& name, const CSecretBytes& value);
