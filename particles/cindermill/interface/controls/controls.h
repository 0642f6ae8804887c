#pragma once

// Makes the classes of the controls known by their names.
void RegisterControlClasses();
