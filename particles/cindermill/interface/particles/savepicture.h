#pragma once

class TParticleRenderWindow;

// Asks for a file and writes what the preview shows at this moment into it.
void SavePictureAs(TParticleRenderWindow& window);
// The same into a file that is known. False with a message if it cannot be written or a person keeps what is
// there.
bool SavePicture(TParticleRenderWindow& window, const char* path);
