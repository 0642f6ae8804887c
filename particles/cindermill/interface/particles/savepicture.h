#pragma once

class TDocument;
class TParticleRenderWindow;

// Asks for a file and writes what the preview of a document shows at this moment into it. It is offered the
// effect's name, and the first time the effect's folder. The status bar tells that it is written, a message
// that it cannot be.
void SavePictureAs(TParticleRenderWindow& window, const TDocument& document);
