#pragma once

class TErrorList;

// Shows a list of collected errors under a title. Without a window system they go to the log.
void DisplayErrors(const char* title, const TErrorList& errors);

// Takes the showing over; null gives it back.
using TDisplayErrors = void (*)(const char* title, const TErrorList& errors);
void SetDisplayErrors(TDisplayErrors display);
