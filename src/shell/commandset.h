#pragma once
// What runs each command: reads the arguments of the current line, reports the missing and the malformed, and
// passes the rest on to the operation.

namespace vantorel::command {

// The session
void help();
void logfile();
void savedir();
void loglevel();
void idiotmode();
void reset();
void echo();
void alias();

// The libraries of files
void auditfiles();
void loadhashes();
void loadadf();
void adflist();
void adfsavefile();
void adfsavezip();

// ROMs
void rombase();
void romname();
void newrom();
void loadrom();
void analyserom();
void analyseromoffsets();
void modules();
void rom();
void roms();

// Bytes of a ROM
void find();
void findopcode();
void patch();

// The components of a ROM
void editcomponent();
void checksum();
void add();
void deletecomponent();
void canonisecomponent();
void savecomponenthash();
void savecomponent();
void missassemble();
void analysecomponent();

// ROMs written to files
void romprofile();
void saveprofile();
void saverom();
void saveromhash();
void savertb();

} // namespace vantorel::command
