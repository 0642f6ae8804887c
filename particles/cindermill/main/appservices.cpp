#include "particles/cindermill/main/appservices.h"

#include "library/system/message.h"
#include "library/wimp/gl/device/rendertextureinstance.h"
#include "particles/cindermill/main/resourcelocator.h"
#include "particles/cindermill/main/settings.h"
#include "particles/effectgraph/export/exportpolicies.h"

int TAppServices::GetTraceParticleSize() const
{
    return Settings.GetTraceParticleSize();
}

int TAppServices::GetTraceAttributeSize() const
{
    return Settings.GetTraceAttributeSize();
}

int TAppServices::GetPolicyFlags() const
{
    return (Settings.GetPolicyFailurePreventsExport() ? PF_PREVENTEXPORT : 0) |
           (Settings.GetPolicyMustHaveBoundingBox() ? PF_MUSTHAVEBOUNDS : 0) |
           (Settings.GetPolicyNoMixedBoundingBoxes() ? PF_NOMIXEDBOUNDS : 0);
}

bool TAppServices::FindResource(const char* name, TString& path)
{
    return Locator.Find(name, path) != FR_NOTFOUND;
}

bool TAppServices::LoadTexture(const char* path, TRenderTextureInstance& texture)
{
    TRenderTextureInstance loaded;
    if (!loaded.Load(path))
        return false;
    texture = loaded;
    return true;
}

void TAppServices::Warn(const char* text)
{
    ShowMessage("%s", text);
}
