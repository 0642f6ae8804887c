#include "library/wimp/gl/device/graphicsdevice.h"

static TGraphicsDevice* Device = nullptr;

TGraphicsDevice* GetGraphicsDevice()
{
    return Device;
}

void SetGraphicsDevice(TGraphicsDevice* device)
{
    Device = device;
}
