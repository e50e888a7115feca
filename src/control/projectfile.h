// Project files: four essentials of a connection in a profile file, ".tlo". What the commands Open, Save and
// Save As do once the host has agreed.
#pragma once

class CTarnCommCtl;

// Reads ProjectFilename, or the file that the user chooses where there is no name yet.
void OpenProject(CTarnCommCtl& control);
// Writes ProjectFilename; asks for the name where there is none.
void SaveProject(CTarnCommCtl& control);
// Always asks for the name.
void SaveProjectAs(CTarnCommCtl& control);
