// What the print system gets to hear for each capability index, written out.
#pragma once

#include "support/prelude.h"

struct CapabilityRow {
    enum Kind { kConstant, kPapers, kFields };

    WORD index;
    const char* name;
    DWORD value;       // of a constant
    size_t bytes = 0;  // written into a buffer; of papers: for each
    Kind kind = kConstant;
};

inline constexpr CapabilityRow kCapabilityRows[] = {{0, "none", 0},
                                                    {1, "DC_FIELDS", 0x00010C13, 0, CapabilityRow::kFields},
                                                    {2, "DC_PAPERS", 0, 2, CapabilityRow::kPapers},
                                                    {3, "DC_PAPERSIZE", 0, 8, CapabilityRow::kPapers},
                                                    {4, "DC_MINEXTENT", 0x00FE00FE},
                                                    {5, "DC_MAXEXTENT", 0x7FFF7FFF},
                                                    {6, "DC_BINS", 1, 2},
                                                    {7, "DC_DUPLEX", 0},
                                                    {8, "DC_SIZE", 220},
                                                    {9, "DC_EXTRA", 36},
                                                    {10, "DC_VERSION", 0x0401},
                                                    {11, "DC_DRIVER", 0x0800},
                                                    {12, "DC_BINNAMES", 1, 48},
                                                    {13, "DC_ENUMRESOLUTIONS", 10, 80},
                                                    {14, "DC_FILEDEPENDENCIES", 0, 2},
                                                    {15, "DC_TRUETYPE", 2},
                                                    {16, "DC_PAPERNAMES", 0, 128, CapabilityRow::kPapers},
                                                    {17, "DC_ORIENTATION", 90},
                                                    {18, "DC_COPIES", 1},
                                                    {19, "DC_BINADJUST", 0},
                                                    {20, "DC_EMF_COMPLIANT", 0},
                                                    {21, "DC_DATATYPE_PRODUCED", 0},
                                                    {22, "DC_COLLATE", 0},
                                                    {23, "DC_MANUFACTURER", 0},
                                                    {24, "DC_MODEL", 0},
                                                    {25, "DC_PERSONALITY", 1, 64},
                                                    {26, "DC_PRINTRATE", 100},
                                                    {27, "DC_PRINTRATEUNIT", 1},
                                                    {28, "DC_PRINTERMEM", 262144},
                                                    {29, "DC_MEDIAREADY", 1, 128},
                                                    {30, "DC_STAPLE", 0},
                                                    {31, "DC_PRINTRATEPPM", 100},
                                                    {32, "DC_COLORDEVICE", 1},
                                                    {33, "DC_NUP", 0},
                                                    {34, "DC_MEDIATYPENAMES", 0}};
