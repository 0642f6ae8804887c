#pragma once

// The tool's own version, as its package has it: "0.9.0".
const char* GetToolVersion();
