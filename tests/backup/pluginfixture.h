#pragma once

#include <gtest/gtest.h>

#include "fakeagent.h"
#include "profile.h"
#include "support/tracerecorder.h"
#include "vlonlineids.h"

// A variant that is cleared with the object.
struct ownedVariant_t : VARIANT {
    ownedVariant_t() { VariantInit(this); }
    ~ownedVariant_t() { VariantClear(this); }
    ownedVariant_t(const ownedVariant_t&) = delete;
    ownedVariant_t& operator=(const ownedVariant_t&) = delete;
};

// byteArray makes a byte array of type 0x2011 in a variant; bytesOf takes one apart.
void byteArray(VARIANT& variant, const bytes& content, LONG lower = 0);
bytes bytesOf(const VARIANT& variant);

// traced tells whether a message is among them, level first: "U text", "E 0 text".
bool traced(const std::vector<std::wstring>& messages, const std::wstring& message);

// pluginTest has the plug-in's object, a profile for its user, and an agent's window.
class pluginTest : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    HRESULT restore(const bytes& backup) const;

    profile_t m_profile;
    traceRecorder_t m_trace;
    agentWindow_t m_agent;
    VLONLINEIDSLib::IVLKTBackupRestore2* m_plugin = nullptr;
    VLONLINEIDSLib::IVLKTBackupRestore3* m_plugin3 = nullptr;
};
