#pragma once

#include "particles/cindermill/graph/text/textline.h"
#include "particles/effectgraph/nodetype.h"

// What a node's copy of its type tells beyond parameters: of the type, and of the node itself.
void AddTypeLines(const TNodeType& type, TTextLines& lines);
void AddOutputLines(const TNodeType& type, TTextLines& values, TTextLines& declarations);
void AddPropertyLines(const TNodeType& type, TTextLines& lines);

// The labels of a node's ports: the names in quotes, numbered where one occurs more than once.
void GetInputLabels(const TNodeType& type, vector<TString>& labels);
void GetOutputLabels(const TNodeType& type, vector<TString>& labels);
