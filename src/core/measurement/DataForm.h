#pragma once

#include <array>
#include <cstddef>

/// The form in which the values of a result are saved.
enum class DataForm { Tiff, Text, FloatTiff };

/// One form: the command that chooses it.
struct DataFormRow {
    DataForm form;
    const char* command;
    bool isTiff;
};

/// All forms, in the order of DataForm.
inline constexpr std::array DataForms{
    DataFormRow{DataForm::Tiff, "saveDataCfg_save_as_tiff", true},
    DataFormRow{DataForm::Text, "saveDataCfg_save_as_text", false},
    DataFormRow{DataForm::FloatTiff, "saveDataCfg_save_as_float", true},
};
inline constexpr const DataFormRow& dataForm(DataForm form) {
    return DataForms[static_cast<std::size_t>(form)];
}
