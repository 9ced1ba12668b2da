// What the form asks for, by the keys of the document. `kind` is the form of a value: 'text' is one in every language,
// 'long' a longer one.

const names = (...values) => values.map((value) => ({value, label: value}));

export const general = [
  {key: 'name', label: 'Name of the application', kind: 'string'},
  {key: 'version', label: 'Version', kind: 'integer'},
  {key: 're_consent_enabled', label: 'A greater version asks everyone again', kind: 'switch'},
  {key: 'x-auth-token', label: 'Access token for uploads', kind: 'string'},
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
  {key: 'collecting_data', label: 'Collects data', kind: 'switch'},
];

export const permission = [
  {key: 'permission_id', label: 'Permission', kind: 'permission'},
  {key: 'nameI18N', label: 'Name', kind: 'text'},
  {key: 'description', label: 'Description', kind: 'long'},
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
  {key: 'hide_close_button', label: 'Without a button to close', kind: 'switch'},
  {key: 'hide_accept_toggle', label: 'Without the button to accept', kind: 'switch'},
  {key: 'banner_position', label: 'Position', kind: 'choice', choices: names('bottom', 'center')},
  {key: 'button_shape', label: 'Shape of buttons', kind: 'choice',
    choices: names('rounded', 'square', 'pill', 'outlined', 'edgeless')},
  {key: 'preference_center_heading', label: 'Heading of the choices', kind: 'text'},
  {key: 'preference_center_guidance', label: 'Guidance on the choices', kind: 'long'},
  {key: 'preference_center_description', label: 'Description of the choices', kind: 'long'},
  {key: 'sdk_tab_heading', label: 'Tab of purposes', kind: 'text'},
  {key: 'permissions_tab_heading', label: 'Tab of permissions', kind: 'text'},
  {key: 'permissions_tab_guidance', label: 'Guidance on permissions', kind: 'long'},
  {key: 'permissions_tab_description', label: 'Description of permissions', kind: 'long'},
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
].map((field) => ({...field, kind: 'color'}));

// What a banner without colours of its own begins with.
export const newPalette = {
  button_background: '#1D3A5F', button_text: '#FFFFFF', button_border: '#1D3A5F',
  banner_background: '#FFFFFF', banner_text: '#1F2933', banner_links: '#1D4F91',
  preference_center_footer_background: '#F2F4F7', preference_center_footer_selector: '#1D3A5F',
};

export const prompt = [
  {key: 'prompt_heading', label: 'Heading', kind: 'text'},
  {key: 'prompt_message', label: 'Message', kind: 'long'},
  {key: 'settings_button_text', label: 'Button to the settings', kind: 'text'},
  {key: 'not_now_button_text', label: 'Button to decline', kind: 'text'},
];
