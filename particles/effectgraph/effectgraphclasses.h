#pragma once

// Enters the classes of the model that files name: graph, nodes, edges, node types and parameters.
void RegisterEffectGraphClasses();
