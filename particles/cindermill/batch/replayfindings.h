#pragma once

class TDocument;
class TFindingReport;
class TReplayReport;

// Tells a report what a comparison of the document's preview with its export has found: a finding for each
// difference, with its numbers, and for each note.
void AddReplayFindings(TDocument& document, const char* path, const TReplayReport& replay,
                       TFindingReport& report);
