#pragma once

class TArguments;
class TBatchSession;

// The commands of the program; each gives the exit status, as the batch program's do.
int DrawPicture(TBatchSession& session, TArguments& arguments);
int DrawSheet(TBatchSession& session, TArguments& arguments);
