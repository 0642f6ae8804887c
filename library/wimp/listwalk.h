#pragma once

// Where a key leads the mark in a list of so many entries: up and down, by a page, to both ends. -1 for a
// key that leads nowhere, and in an empty list.
int WalkList(int key, int marked, int count, int page);
