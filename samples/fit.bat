:rem_start
Maps the three iron species of the sample measurement by linear combination fitting (LCF).
The energies are taken as they stand in the file names, so the fan of the monochromator is still
in them: compare with calibrate-and-fit.bat.
All names are relative to the folder of the measurement, so start the program there.
:rem_end
load_I0_files_of_pattern NEW i0 *.tif
load_I1_files_of_pattern NEW i1 *.tif
calib_clear_map
set_band_w 1
set_band_h 1
select_region 0 0 0 0
:rem_start
References: index, use, energy shift in eV, file, background (0 = straight lines).
:rem_end
analyzer_set_LCF_std 0 1 0.0 references/metal.dat 0
analyzer_set_LCF_std 1 1 0.0 references/oxide2.dat 0
analyzer_set_LCF_std 2 1 0.0 references/oxide3.dat 0
analyzer_set_LCF_mode 0
analyzer_set_dMut_scale_min 0.0
analyzer_set_dMut_scale_max 1.0
analyzer_set_ratio_scale_min 0.0
analyzer_set_ratio_scale_max 1.0
analyzer_set_fixed_scale 1
analyzer_exec_LCF
:rem_start
Pictures of all maps: results/fit-R-0.png is the edge jump due to reference R,
results/fit-R-1.png its fraction.
:rem_end
save_all_images results/fit.png
:rem_start
Each fraction map as a 16-bit TIFF file (0 to 65535 for fractions 0 to 1) and as a text table with
one line "x,y,value" for each bin.
:rem_end
analyzer_select_image_type 1
saveDataCfg_tiff_fix_scale 1
saveDataCfg_tiff_scale_min 0.0
saveDataCfg_tiff_scale_max 1.0
saveDataCfg_tiff_as_analyzed 1
saveDataCfg_text_as_csv
saveDataCfg_text_as_xyz
:for ref %r 0 2
analyzer_select_image %r
saveDataCfg_save_as_tiff
save_data_as_tiff results/fit-fraction-%r.tif
saveDataCfg_save_as_text
save_data_as_tiff results/fit-fraction-%r.csv
:next ref
:rem_start
Spectra at three places: in a metal grain, in the 2+ oxide, in the rim.
:rem_end
analyzer_show_window
move_position 123 100
save_spectra results/fit-spectrum-grain.dat
move_position 107 114
save_spectra results/fit-spectrum-oxide.dat
move_position 42 57
save_spectra results/fit-spectrum-rim.dat
:rem_start
Leave the first fraction map on display.
:rem_end
analyzer_select_image 0
select_disp_image 3
