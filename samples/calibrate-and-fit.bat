:rem_start
Measures the energy shift of every bin with the foil, then fits the sample at corrected energies.
All names are relative to the folder of the measurement, so start the program there.
:rem_end
:rem_start
The foil has the same edge everywhere, so where its edge appears tells the energy shift of every
bin. The map stays when the next stack is loaded.
:rem_end
load_I0_files_of_pattern NEW i0 *.tif
load_I1_files_of_pattern NEW foil *.tif
set_band_w 1
set_band_h 1
select_region 0 0 0 0
calib_load_std standard/fe-foil.dat
calib_exec
:rem_start
Now the sample.
:rem_end
load_I1_files_of_pattern NEW i1 *.tif
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
Pictures of all maps: results/calibrated-R-0.png is the edge jump due to reference R,
results/calibrated-R-1.png its fraction.
:rem_end
save_all_images results/calibrated.png
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
save_data_as_tiff results/calibrated-fraction-%r.tif
saveDataCfg_save_as_text
save_data_as_tiff results/calibrated-fraction-%r.csv
:next ref
:rem_start
Spectra at three places: in a metal grain, in the 2+ oxide, in the rim.
:rem_end
analyzer_show_window
move_position 123 100
save_spectra results/calibrated-spectrum-grain.dat
move_position 107 114
save_spectra results/calibrated-spectrum-oxide.dat
move_position 42 57
save_spectra results/calibrated-spectrum-rim.dat
:rem_start
Leave the first fraction map on display.
:rem_end
analyzer_select_image 0
select_disp_image 3
