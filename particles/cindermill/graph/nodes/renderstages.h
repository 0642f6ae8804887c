#pragma once

// Makes the classes of render stages known to the class registry. Does no harm a second time.
void RegisterRenderStages();
