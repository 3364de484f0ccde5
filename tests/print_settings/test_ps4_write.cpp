#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "print_settings/PrintSettings.h"
#include "print_settings/json.h"
#include "support/import_patch.h"
#include "support/random_settings.h"
#include "support/temp_folder.h"

namespace ps = Corvanta::Vantrix::PrintSettings;

namespace {

// What a setting at its defaults holds, member by member.
constexpr char kDefaults[] =
    R"({"Addition":{"Bool":{},"Bool_Array":{},"Float":{},"Float_Array":{},"Int":{},"Int_Array":{},"Str":{},)"
    R"("Str_Array":{}},)"
    R"("Color":{"BlackToK100":false,"ColorMode":0,"GrayDecreasingMethod":0,"MonoDecreasingMethod":0,)"
    R"("MonoImageFilter":0,"MonoImageThreshold":128,"MonoTextAndPassThreshold":128},)"
    R"("Compression":{"ASCIIFormat":false,)"
    R"("Color":{"CompressionMethod":0,"DownSamplingMethod":2,"JpegQuality":95,"ResolutionTarget":150,)"
    R"("ResolutionThreshold":225},)"
    R"("Gray":{"CompressionMethod":0,"DownSamplingMethod":2,"JpegQuality":95,"ResolutionTarget":150,)"
    R"("ResolutionThreshold":225},)"
    R"("HighCompress":false,)"
    R"("Mono":{"DownSamplingMethod":2,"MonoCompressionMethod":2,"ResolutionTarget":1200,)"
    R"("ResolutionThreshold":1800},"TextAndLineArt":false},)"
    R"("Font":{"EmbedBase14":true,"EmbedFontStyle":0,"Fonts":[],"WhenFailedToEmbed":1},)"
    R"("General":{"Linearize":true,"NoOutputBlankPage":false,"OpenPDF":1,"OutputFolder":"","PaperHeight":297,)"
    R"("PaperName":9,"PaperOrientation":0,"PaperResolution":600,"PaperType":0,"PaperWidth":210,"SaveStyle":0,)"
    R"("Scale":100,"URLLink":false,"WhenSameName":0},)"
    R"("Notification":{"ID":0,"RegisterMessageString":"","V6":{"ID_High":0,"ID_Low":0,"PageEnd":"",)"
    R"("PageStart":"","PrintEnd":"","PrintError":"","PrintStart":""}},)"
    R"("OpenAction":{"Binding":1,"CenterWindow":false,"FitToPage":false,"FullScreen":false,"HideMenu":false,)"
    R"("HideToolBar":false,"HideWindowControl":false,"PageAdjust":0,"PageLayout":0,"PageMode":0,)"
    R"("ShowDocumentTitle":false,"StartPage":1},)"
    R"("PDFVersion":{"BleedBox":{"bottom":0,"left":0,"right":0,"top":0},"ICCFileName":"",)"
    R"("TrimBox":{"bottom":0,"left":0,"right":0,"top":0},"UseBleedBox":false,"UseTrimBox":false,"Version":4,)"
    R"("WhenErroredPDFAX":0},)"
    R"("PSComment":[],"PSName":"","PSVersion":70000,)"
    R"("Security":{"AllowAccessFromScreenReader":true,"AllowCopyContent":false,"EditPermission":2,"Level":4,)"
    R"("MasterPassword":"","PDF13_DisallowAnnotate":false,"PDF13_DisallowCopy":true,)"
    R"("PDF13_DisallowModify":true,"PDF13_DisallowPrint":true,"PrintPermission":0,"UserPassword":""},)"
    R"("Summary":{"Author":"","Creator":"","EmbedPSFileName":false,"Keywords":"","Subject":"","Title":""},)"
    R"("Watermark":{"DiagonalText":true,"FontName":"Arial","FontSize":0,"HorizontalPosition":1,)"
    R"("PictureFileName":"","PictureScale":4294967295,"Style":0,"Text":"CONFIDENTIAL","TextColor":255,)"
    R"("Transparency":70,"VerticalPosition":1,"VisibleInDisplay":true,"VisibleInPrint":true,"ZOrder":0}})";

}  // namespace

TEST(Ps4Write, DefaultsAreTheseMembers) {
    picojson::value document;
    ASSERT_TRUE(ps::json::try_parse(std::string_view(ps::PrintSettings().Serialise()).substr(3), document));
    EXPECT_EQ(document.serialize(), kDefaults);
}

TEST(Ps4Write, BytesAreMarkedAndIndented) {
    ps::PrintSettings settings;
    settings->PSComment = {{2, L"\u00e9\""}, {-1, L""}};
    const std::string bytes = settings.Serialise();
    EXPECT_TRUE(bytes.starts_with("\xEF\xBB\xBF{\n  \"Addition\": {\n    \"Bool\": {},\n"));
    EXPECT_NE(bytes.find("  \"PSComment\": [\n    [\n      -1,\n      \"\"\n    ],\n"
                         "    [\n      2,\n      \"\u00e9\\\"\"\n    ]\n  ],\n  \"PSName\": \"\",\n"),
              std::string::npos);
    EXPECT_TRUE(bytes.ends_with("\"ZOrder\": 0\n  }\n}\n"));
    EXPECT_EQ(bytes.find('\r'), std::string::npos);
}

TEST(Ps4Write, WhatIsWrittenReadsBackEqual) {
    const TempFolder folder;
    const std::wstring path = folder.file(L"round.ps4");
    RandomSettings random(6);
    for (int round = 0; round < 200; ++round) {
        ps::PrintSettings settings = round == 0 ? ps::PrintSettings() : random.next();
        ASSERT_TRUE(settings.Save(path));
        ps::PrintSettings read;
        ASSERT_TRUE(read.Load(path));
        settings.notification()->V6->PrintError = settings.notification()->V6->PrintEnd;
        ASSERT_EQ(read, settings) << round << "\n" << settings.Serialise();
        ASSERT_EQ(read.Serialise(), settings.Serialise());
    }
    EXPECT_EQ(folder.count(), 1u);
}

TEST(Ps4Write, LoneSurrogatesBecomeTheReplacementCharacter) {
    ps::PrintSettings settings;
    settings->PSName =
        L"a\xD800"
        L"b\xDC00";
    ps::PrintSettings read;
    ASSERT_EQ(read.LoadPS4(std::string_view(settings.Serialise()).substr(3), false), ps::kLoaded);
    EXPECT_EQ(read->PSName, L"a\uFFFDb\uFFFD");
}

TEST(Ps4Write, ValuesThatAreNotFiniteStopTheSave) {
    const TempFolder folder;
    const std::wstring path = folder.write(L"old.ps4", "old");
    for (const double value :
         {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        ps::PrintSettings settings;
        settings.addition()->Float_Array[L"x"] = {1, value};
        EXPECT_FALSE(settings.Save(path));
        settings.addition()->Float_Array.clear();
        settings.pdfVersion()->BleedBox.top = static_cast<float>(value);
        EXPECT_FALSE(settings.Save(path));
    }
    EXPECT_EQ(TempFolder::read(path), "old");
    EXPECT_EQ(folder.count(), 1u);
}

TEST(Ps4Write, AFileHeldOpenByAnotherProgramIsWrittenInPlace) {
    const TempFolder folder;
    ps::PrintSettings settings;
    const std::string bytes = settings.Serialise();
    for (const std::string& old : {std::string("short"), std::string(10000, 'x')}) {
        const std::wstring path = folder.write(L"held.ps4", old);
        const HANDLE holder = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                          nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_TRUE(settings.Save(path));
        EXPECT_EQ(GetFileSize(holder, nullptr), bytes.size());  // the very file that is held
        CloseHandle(holder);
        EXPECT_EQ(TempFolder::read(path), bytes);
        EXPECT_EQ(folder.count(), 1u);
    }
}

TEST(Ps4Write, WhereNothingCanBeWrittenNothingChanges) {
    const TempFolder folder;
    const std::wstring read_only = folder.write(L"read only.ps4", "old");
    SetFileAttributesW(read_only.c_str(), FILE_ATTRIBUTE_READONLY);
    const std::wstring locked = folder.write(L"locked.ps4", "old");
    const HANDLE owner =
        CreateFileW(locked.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    const std::wstring paths[] = {L"", folder.path(), folder.file(L"none\\new.ps4"), read_only, locked};
    for (const std::wstring& path : paths) {
        SetLastError(0);
        EXPECT_FALSE(ps::PrintSettings().Save(path));
        EXPECT_NE(GetLastError(), 0u);
    }
    CloseHandle(owner);
    EXPECT_EQ(TempFolder::read(read_only), "old");
    EXPECT_EQ(TempFolder::read(locked), "old");
    EXPECT_EQ(folder.count(), 2u);
}

namespace {

// A disk that is full: nothing is written, nothing grows.
BOOL WINAPI write_to_full_disk(HANDLE, const void*, DWORD, DWORD* written, OVERLAPPED*) {
    *written = 0;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}
BOOL WINAPI grow_on_full_disk(HANDLE) {
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

}  // namespace

TEST(Ps4Write, AFullDiskCostsNoSetting) {
    const TempFolder folder;
    const std::wstring path = folder.write(L"old.ps4", "old");
    {
        const ImportPatch full("WriteFile", reinterpret_cast<void*>(&write_to_full_disk));
        ASSERT_TRUE(full.found());
        EXPECT_FALSE(ps::PrintSettings().Save(path));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_DISK_FULL});
    }
    {
        const HANDLE holder = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                          nullptr, OPEN_EXISTING, 0, nullptr);
        const ImportPatch full("SetEndOfFile", reinterpret_cast<void*>(&grow_on_full_disk));
        ASSERT_TRUE(full.found());
        EXPECT_FALSE(ps::PrintSettings().Save(path));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_DISK_FULL});
        CloseHandle(holder);
    }
    EXPECT_EQ(TempFolder::read(path), "old");
    EXPECT_EQ(folder.count(), 1u);
}
