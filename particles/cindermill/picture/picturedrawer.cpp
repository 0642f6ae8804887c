#include "particles/cindermill/picture/picturedrawer.h"

#include "library/wimp/gl/device/sceneview.h"
#include "library/wimp/gl/glcontext.h"
#include "particles/cindermill/interface/particles/camera.h"
#include "particles/cindermill/interface/particles/picturefile.h"
#include "particles/cindermill/main/document.h"
#include "particles/cindermill/picture/pictureoptions.h"

#include <cstdio>

#include <GL/glew.h>

bool TPictureDrawer::Create(int width, int height)
{
    if (!Context.Create()) {
        std::fprintf(stderr, "Pictures cannot be drawn here: %s\n", Context.GetFault().Print());
        return false;
    }
    if (Window.Resize(width, height))
        return true;
    std::fprintf(stderr, "The OpenGL driver draws no picture of %d by %d\n", width, height);
    return false;
}

bool TPictureDrawer::WritePicture(const TRgbPicture& picture, const char* path)
{
    TString fault;
    if (WritePictureFile(picture, path, fault))
        return true;
    std::fprintf(stderr, "%s: The file cannot be written: %s\n", path, fault.Print());
    return false;
}

bool TPictureDrawer::Draw(TDocument& document, const TPictureOptions& options, float turn,
                          TRgbPicture& picture)
{
    const int width = picture.GetWidth();
    const int height = picture.GetHeight();
    TMatrix4 worldView;
    TMatrix4 projection;
    TPictureCamera(options).GetView(turn, worldView);
    TCamera::GetProjection(static_cast<float>(width) / static_cast<float>(height), projection);
    TSceneView view;
    view.Set(worldView, projection);
    if (!Window.MakeCurrent())
        return false;
    const bool wasInited = document.GetEngine().IsInited();
    DropGlErrors();
    FlushGlDeletions();
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Window.GetFrameBuffer());
    glViewport(0, 0, width, height);
    Scene.Tick(document);
    const auto part = [&](int shift) {
        return static_cast<float>(options.Background >> shift & 0xFF) / 255.0f;
    };
    glDepthMask(GL_TRUE);
    glClearColor(part(16), part(8), part(0), 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    // What marks the ground is seen on it.
    Scene.SetLook(TPreviewLook{.Background = BG_COLOUR, .Colour = options.Background});
    Scene.DrawOver(document, view, !options.Plain);
    Window.Read(picture.GetPixels());
    if (document.GetEngine().IsInited() == wasInited)
        return true;
    // A fault has thrown the engine away; the scene tells of it between frames.
    Scene.Tick(document);
    return false;
}
