// Placeholder translation unit for a unit that has no sources yet.
