#pragma once

// Makes every run-time node class known to the class registry, whatever the linker would leave out.
void RegisterExecNodes();
