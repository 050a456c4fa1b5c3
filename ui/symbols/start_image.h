// "Startbild ändern".
#pragma once

/// Reads the start image, opens the pixel editor on it, asks (default No) and writes it back. After a read with a
/// time-out the question says that the picture may be incomplete.
void EditStartImage();
