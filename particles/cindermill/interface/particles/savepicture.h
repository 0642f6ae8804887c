#pragma once

class TParticleRenderWindow;

// Asks for a file and writes what the preview shows at this moment into it. The status bar tells that it is
// written, a message that it cannot be.
void SavePictureAs(TParticleRenderWindow& window);
