// How the images of a document are compressed: one record per kind of image.
#pragma once

#include <cstdint>

#include "print_settings/ps_impl_base.h"

namespace Corvanta::Vantrix::PrintSettings {

// The record that each kind of image owns. An image whose resolution is above the threshold is brought down
// to the target, both in dots per inch (10 to 24000).
struct CompressImage_impl {
    enum : uint32_t { kMonoPlain, kGroup3, kGroup4, kMonoZip, kMonoRunLength };
    uint32_t MonoCompressionMethod = kGroup4;  // monochrome images only
    enum : uint32_t { kNoSampling, kSubsample, kAverage, kBicubic };
    uint32_t DownSamplingMethod = kAverage;
    enum : uint32_t { kAutomatic, kJpeg, kZip, kRunLength, kPlain };
    uint32_t CompressionMethod = kAutomatic;  // colour and grey images only
    uint8_t JpegQuality = 95;                 // 0 to 100; colour and grey images only
    uint32_t ResolutionThreshold = 225;
    uint32_t ResolutionTarget = 150;
};

struct ColorImage_impl final : ps_impl_base<ColorImage_impl>, CompressImage_impl {};
struct GrayImage_impl final : ps_impl_base<GrayImage_impl>, CompressImage_impl {};
struct MonoImage_impl final : ps_impl_base<MonoImage_impl>, CompressImage_impl {
    MonoImage_impl() {
        ResolutionThreshold = 1800;
        ResolutionTarget = 1200;
    }
};

// Reads the settings of an image whatever its kind.
class CompressImage {
public:
    virtual ~CompressImage() = default;

    [[nodiscard]] virtual uint32_t MonoCompressionMethod() const { return record().MonoCompressionMethod; }
    [[nodiscard]] virtual uint32_t DownSamplingMethod() const { return record().DownSamplingMethod; }
    [[nodiscard]] virtual uint32_t CompressionMethod() const { return record().CompressionMethod; }
    [[nodiscard]] virtual uint8_t JpegQuality() const { return record().JpegQuality; }
    [[nodiscard]] virtual uint32_t ResolutionThreshold() const { return record().ResolutionThreshold; }
    [[nodiscard]] virtual uint32_t ResolutionTarget() const { return record().ResolutionTarget; }

private:
    [[nodiscard]] virtual const CompressImage_impl& record() const noexcept = 0;
};

template <class Impl>
class CompressImageOf : public CompressImage, public ps_handle<Impl> {
private:
    [[nodiscard]] const CompressImage_impl& record() const noexcept override { return **this; }
};

class ColorImage final : public CompressImageOf<ColorImage_impl> {};
class GrayImage final : public CompressImageOf<GrayImage_impl> {};
class MonoImage final : public CompressImageOf<MonoImage_impl> {};

}  // namespace Corvanta::Vantrix::PrintSettings
