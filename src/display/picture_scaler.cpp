#include "display/picture_scaler.h"

#include "display/picture_scaler_private.h"

uint32_t ScalerFactor(PictureScaler scaler) {
    switch (scaler) {
    case PictureScaler::kNone: return 1;
    case PictureScaler::kEdge2x: return 2;
    case PictureScaler::kEdge4x:
    case PictureScaler::kSoft4x: return 4;
    }
    return 1;
}

bool HasWideVectors() {
#if defined(__x86_64__) && defined(__GNUC__)
    return __builtin_cpu_supports("avx2") != 0;
#else
    return false;
#endif
}

void ScalePicture(PictureScaler scaler, const uint32_t* source, uint32_t width, uint32_t height,
                  uint32_t* target) {
    if (width == 0 || height == 0) {
        return;
    }
    const SourcePicture picture{source, width, height};
    const VectorForm form = HasWideVectors() ? VectorForm::kWide : VectorForm::kPlain;
    switch (scaler) {
    case PictureScaler::kEdge2x: ScaleEdge2x(picture, target, form); return;
    case PictureScaler::kEdge4x: ScaleEdge4x(picture, target, form); return;
    case PictureScaler::kSoft4x: ScaleSoft4x(picture, target, form); return;
    case PictureScaler::kNone: break;
    }
    const size_t count = size_t{width} * height;
    for (size_t at = 0; at < count; ++at) {
        target[at] = source[at] | kOpaque;
    }
}
