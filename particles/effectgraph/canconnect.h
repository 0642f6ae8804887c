#pragma once

// Forgets every answer of CanConnect. The answers are kept by address, so this must follow every node and
// edge that comes or goes.
void ClearCanConnectCache();
