#pragma once

// Enters all operation classes, the stack, and the nodes and edges that they refer to.
void RegisterOperations();
