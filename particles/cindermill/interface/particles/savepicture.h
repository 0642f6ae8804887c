#pragma once

class TParticleRenderWindow;

// Asks for a file and writes what the preview shows at this moment into it; with a message if it cannot be
// written.
void SavePictureAs(TParticleRenderWindow& window);
