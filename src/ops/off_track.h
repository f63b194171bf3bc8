#pragma once

/// Rewrites small runs at random places between far seeks, and re-reads their neighbourhood every thousand passes, so
/// that a write that strayed off its track shows as read errors. The outer 100 MB at each end are left out.
void OffTrack_Write_Test();

/// The test in its frame; no button or switch starts it: tests do.
void Cmd_OffTrack_Write();
