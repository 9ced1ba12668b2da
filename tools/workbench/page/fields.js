// The form's fields by document key. `kind`: 'text' is a localized text, 'long' a longer one, 'purposes' a list of
// purpose numbers. `in` is the path from the given values to the object with the key.

const names = (...values) => values.map((value) => ({value, label: value}));

export const general = [
  {key: 'name', label: 'Name of the application', kind: 'string'},
  {key: 'version', label: 'Version', kind: 'integer'},
  {key: 're_consent_enabled', label: 'A greater version asks everyone again', kind: 'switch'},
  {key: 'x-auth-token', label: 'Access token for uploads', kind: 'string'},
  {key: 'logo_base64', label: 'Logo, for banners without one', kind: 'picture'},
  {key: 'privacy_signal_purposes', label: 'Purposes that a privacy signal opts out of', kind: 'purposes'},
];

export const purpose = [
  {key: 'purpose_id', label: 'Number', kind: 'integer'},
  {key: 'purpose_name', label: 'Name', kind: 'text'},
  {key: 'purpose_description', label: 'Description', kind: 'long'},
  {key: 'disable_opt_out', label: 'Essential: users cannot opt out', kind: 'switch'},
  {key: 'opt_out_text', label: 'Why users cannot opt out', kind: 'long'},
  {key: 'hide_details', label: 'Without the list of components', kind: 'switch'},
];

export const component = [
  {key: 'sdk_id', label: 'Number', kind: 'integer'},
  {key: 'sdk_name', label: 'Name', kind: 'text'},
  {key: 'sdk_description', label: 'Description', kind: 'long'},
  {key: 'vendor', label: 'Vendor', kind: 'string'},
  {key: 'website', label: 'Address', kind: 'string'},
  {key: 'license', label: 'Licence', kind: 'string'},
  {key: 'release_date', label: 'Date of release', kind: 'string'},
  {key: 'collecting_data', label: 'Collects data', kind: 'switch'},
  {key: 'namespace_id', label: 'Name in the program', kind: 'string'},
  {key: 'matched_by', label: 'Recognised by, one a line', kind: 'lines'},
  {key: 'logo_base64', label: 'Logo', kind: 'picture'},
];

export const permission = [
  {key: 'permission_id', label: 'Permission', kind: 'permission'},
  {key: 'nameI18N', label: 'Name', kind: 'text'},
  {key: 'description', label: 'Description', kind: 'long'},
  {key: 'group', label: 'Group, under which it is shown', kind: 'string'},
];

export const banner = [
  {key: 'compliance_type', label: 'Rule', kind: 'choice', choices: [
    {value: 'opt-in', label: 'opt-in: declined until users agree'},
    {value: 'opt-out', label: 'opt-out: granted until users object'},
    {value: 'notice-only', label: 'notice-only: users are told'}]},
  {key: 'banner_reappearance_time', label: 'An answer is valid for, such as "6 month"', kind: 'string'},
  {key: 'banner_heading', label: 'Heading', kind: 'text'},
  {key: 'banner_text', label: 'Text', kind: 'long'},
  {key: 'accept', label: 'Button to accept', kind: 'text'},
  {key: 'reject', label: 'Button to refuse', kind: 'text'},
  {key: 'preference_center_link', label: 'Link to the choices', kind: 'text'},
  {key: 'privacy_notice_text', label: 'Link to the privacy notice', kind: 'text'},
  {key: 'privacy_notice_link', label: 'Address of the privacy notice', kind: 'string'},
  {key: 'dsr_portal_link', label: 'Address for requests about data', kind: 'string'},
  {key: 'embed_dsr_portal_link', label: 'With the link for requests about data', kind: 'switch'},
  {key: 'hide_close_button', label: 'Without a button to close', kind: 'switch'},
  {key: 'hide_accept_toggle', label: 'Without the button to accept', kind: 'switch'},
  {key: 'banner_position', label: 'Position', kind: 'choice', choices: names('bottom', 'center')},
  {key: 'button_shape', label: 'Shape of buttons', kind: 'choice',
    choices: names('rounded', 'square', 'pill', 'outlined', 'edgeless')},
  {key: 'palette_theme', label: 'Colours, unless it has its own', kind: 'choice', isOptional: true,
    choices: ['Ink', 'Forest', 'Plum', 'Clay', 'Graphite'].map((label, i) => ({value: i + 1, label}))},
  {key: 'company_logo', label: 'Logo', kind: 'picture'},
  {key: 'show_powered_by_quillon_logo', label: 'With a line about the maker of the screens', kind: 'switch'},
  {key: 'record_consent_upon_app_start', label: 'Records the defaults when it appears', kind: 'switch'},
  {key: 'preference_center_heading', label: 'Heading of the choices', kind: 'text'},
  {key: 'preference_center_guidance', label: 'Guidance on the choices', kind: 'long'},
  {key: 'preference_center_description', label: 'Description of the choices', kind: 'long'},
  {key: 'sdk_tab_heading', label: 'Tab of purposes', kind: 'text'},
  {key: 'permissions_tab_heading', label: 'Tab of permissions', kind: 'text'},
  {key: 'permissions_tab_guidance', label: 'Guidance on permissions', kind: 'long'},
  {key: 'permissions_tab_description', label: 'Description of permissions', kind: 'long'},
  {key: 'hide_toggle_for_essential_categories', label: 'Essential purposes without a switch', kind: 'switch'},
  {key: 'show_description_text_with_preference_center_toggle', label: 'Descriptions beside the switches', kind: 'switch'},
  {key: 'should_show_settings_prompt', label: 'Offers the prompt for the system settings', kind: 'switch'},
];

export const palette = [
  {key: 'button_background', label: 'Button'},
  {key: 'button_text', label: 'Text on the button'},
  {key: 'button_border', label: 'Border of the button'},
  {key: 'banner_background', label: 'Background'},
  {key: 'banner_text', label: 'Text'},
  {key: 'banner_links', label: 'Links'},
  {key: 'preference_center_footer_background', label: 'Background of the footer'},
  {key: 'preference_center_footer_selector', label: 'Button in the footer'},
  {key: 'toggle_primary', label: 'Switch that is on'},
  {key: 'toggle_secondary', label: 'Switch that is off'},
  {key: 'purpose_disclaimer_text', label: 'Text about essential purposes'},
  {key: 'purpose_disclaimer_background', label: 'Background of that text'},
].map((field) => ({...field, kind: 'color'}));

// The initial palette of a banner without colours.
export const newPalette = {
  button_background: '#1D3A5F', button_text: '#FFFFFF', button_border: '#1D3A5F',
  banner_background: '#FFFFFF', banner_text: '#1F2933', banner_links: '#1D4F91',
  preference_center_footer_background: '#F2F4F7', preference_center_footer_selector: '#1D3A5F',
};

export const prompt = [
  {key: 'is_sp_enabled', label: 'The prompt is shown', kind: 'switch'},
  ...[
    {key: 'prompt_heading', label: 'Heading', kind: 'text'},
    {key: 'prompt_message', label: 'Message', kind: 'long'},
    {key: 'settings_button_text', label: 'Button to the settings', kind: 'text'},
    {key: 'not_now_button_text', label: 'Button to decline', kind: 'text'},
  ].map((field) => ({...field, in: ['settings_prompt']})),
];

export const tracking = [
  {key: 'is_att_enabled', label: 'Purposes follow the tracking setting of the device', kind: 'switch'},
  ...[
    {key: 'purpose_ids', label: 'Purposes that follow it', kind: 'purposes'},
    {key: 'show_info_on_pref_center', label: 'The choices tell of tracking', kind: 'switch'},
    {key: 'info_text', label: 'What they tell of tracking', kind: 'long'},
  ].map((field) => ({...field, in: ['att_or_gad_config']})),
];

export const consentMode = [
  {key: 'is_gcm_enabled', label: 'Choices are handed on by consent mode', kind: 'switch'},
  {key: 'show_gcm_description', label: 'The choices tell of consent mode', kind: 'switch', in: ['gcm_config']},
  {key: 'gcm_description', label: 'What they tell of consent mode', kind: 'long', in: ['gcm_config']},
];

// A signal is granted if all its purposes are.
export const signals = [
  {key: 'analytics_storage', label: 'Storage for analytics'},
  {key: 'ad_storage', label: 'Storage for advertising'},
  {key: 'ad_user_data', label: 'Data about users for advertising'},
  {key: 'ad_personalization', label: 'Personal advertising'},
].map((field) => ({...field, kind: 'purposes'}));

// The labels for adding a member with a name of the user's choice.
export const place = {label: 'A further place', example: 'DE or US#CA', add: 'Add a place'};
export const name = {label: 'A further name', example: '', add: 'Add a name'};
export const region = {label: 'Further regions', example: 'US#CA, US#VA', add: 'Add regions'};
