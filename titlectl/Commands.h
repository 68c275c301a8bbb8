// What titlectl does. Each command connects, works and gives the exit code.
#pragma once

#include "CommandLine.h"
#include "UnitSession.h"

// --- On the line alone (Commands.cpp)
int List(UnitSession& session, const Command& command);
int Get(UnitSession& session, const Command& command);
int Set(UnitSession& session, const Command& command);

// --- Between the main unit and files (FileCommands.cpp)
int Import(UnitSession& session, const Command& command);
int Export(UnitSession& session, const Command& command);
int Backup(UnitSession& session, const Command& command);
int Restore(UnitSession& session, const Command& command);
