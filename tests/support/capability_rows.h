// What the print system gets to hear for each capability index, written out.
#pragma once

#include <windows.h>
#include <wingdi.h>

struct CapabilityRow {
    enum Kind { kConstant, kPapers, kFields };

    WORD index;
    const char* name;
    Kind kind;
    DWORD value;   // of a constant
    size_t bytes;  // written into a buffer; of papers: for each
};

inline constexpr CapabilityRow kCapabilityRows[] = {
    {0, "none", CapabilityRow::kConstant, 0, 0},
    {1, "DC_FIELDS", CapabilityRow::kFields, 0x00010C13, 0},
    {2, "DC_PAPERS", CapabilityRow::kPapers, 0, 2},
    {3, "DC_PAPERSIZE", CapabilityRow::kPapers, 0, 8},
    {4, "DC_MINEXTENT", CapabilityRow::kConstant, 0x00FE00FE, 0},
    {5, "DC_MAXEXTENT", CapabilityRow::kConstant, 0x7FFF7FFF, 0},
    {6, "DC_BINS", CapabilityRow::kConstant, 1, 2},
    {7, "DC_DUPLEX", CapabilityRow::kConstant, 0, 0},
    {8, "DC_SIZE", CapabilityRow::kConstant, 220, 0},
    {9, "DC_EXTRA", CapabilityRow::kConstant, 36, 0},
    {10, "DC_VERSION", CapabilityRow::kConstant, 0x0401, 0},
    {11, "DC_DRIVER", CapabilityRow::kConstant, 0x0800, 0},
    {12, "DC_BINNAMES", CapabilityRow::kConstant, 1, 48},
    {13, "DC_ENUMRESOLUTIONS", CapabilityRow::kConstant, 10, 80},
    {14, "DC_FILEDEPENDENCIES", CapabilityRow::kConstant, 0, 2},
    {15, "DC_TRUETYPE", CapabilityRow::kConstant, 2, 0},
    {16, "DC_PAPERNAMES", CapabilityRow::kPapers, 0, 128},
    {17, "DC_ORIENTATION", CapabilityRow::kConstant, 90, 0},
    {18, "DC_COPIES", CapabilityRow::kConstant, 1, 0},
    {19, "DC_BINADJUST", CapabilityRow::kConstant, 0, 0},
    {20, "DC_EMF_COMPLIANT", CapabilityRow::kConstant, 0, 0},
    {21, "DC_DATATYPE_PRODUCED", CapabilityRow::kConstant, 0, 0},
    {22, "DC_COLLATE", CapabilityRow::kConstant, 0, 0},
    {23, "DC_MANUFACTURER", CapabilityRow::kConstant, 0, 0},
    {24, "DC_MODEL", CapabilityRow::kConstant, 0, 0},
    {25, "DC_PERSONALITY", CapabilityRow::kConstant, 1, 64},
    {26, "DC_PRINTRATE", CapabilityRow::kConstant, 100, 0},
    {27, "DC_PRINTRATEUNIT", CapabilityRow::kConstant, 1, 0},
    {28, "DC_PRINTERMEM", CapabilityRow::kConstant, 262144, 0},
    {29, "DC_MEDIAREADY", CapabilityRow::kConstant, 1, 128},
    {30, "DC_STAPLE", CapabilityRow::kConstant, 0, 0},
    {31, "DC_PRINTRATEPPM", CapabilityRow::kConstant, 100, 0},
    {32, "DC_COLORDEVICE", CapabilityRow::kConstant, 1, 0},
    {33, "DC_NUP", CapabilityRow::kConstant, 0, 0},
    {34, "DC_MEDIATYPENAMES", CapabilityRow::kConstant, 0, 0},
};
