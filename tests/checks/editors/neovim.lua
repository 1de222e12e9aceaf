-- Run by Neovim with a file: its diagnostics, a quick fix, a completed key, its layout.
--   KZTNS=... nvim --headless --clean +"luafile neovim.lua" FILE
local kztns = os.getenv('KZTNS')
local buffer = vim.api.nvim_get_current_buf()

local function stop(what)
  io.stderr:write('neovim: ' .. what .. '\n')
  vim.cmd('cquit 1')
end

local function wait_for(what, holds)
  if not vim.wait(20000, holds, 20) then stop('no ' .. what) end
end

local function lines() return vim.api.nvim_buf_get_lines(buffer, 0, -1, false) end

local function code_of(diagnostic)
  return diagnostic.code or (diagnostic.user_data or {}).lsp and diagnostic.user_data.lsp.code
end

local function has(code)
  for _, diagnostic in ipairs(vim.diagnostic.get(buffer)) do
    if code_of(diagnostic) == code then return true end
  end
  return false
end

local client = vim.lsp.start_client({ name = 'kztns', cmd = { kztns, 'lsp' } })
vim.lsp.buf_attach_client(buffer, client)
wait_for('finding of SERVER', function() return has('unknown-key') end)
print('diagnostics: ' .. #vim.diagnostic.get(buffer))

-- The quick fix of the second line, of which there is one.
vim.api.nvim_win_set_cursor(0, { 2, 41 })
vim.ui.select = function(items, _, choose) choose(items[1]) end
vim.lsp.buf.code_action({ diagnostics = vim.lsp.diagnostic.get_line_diagnostics(buffer, 1),
                          only = { 'quickfix' } })
wait_for('quick fix', function()
  return lines()[2] == '  (CONNECT_DATA = (SERVICE_NAME = sales)))'
end)
wait_for('end of the finding', function() return not has('unknown-key') end)
print('quick fix: ' .. lines()[2])

-- The key that is begun on the third line.
vim.bo[buffer].omnifunc = 'v:lua.vim.lsp.omnifunc'
vim.api.nvim_win_set_cursor(0, { 3, #lines()[3] - 1 })
local params = vim.lsp.util.make_position_params()
params.position.character = #lines()[3]
local answers = vim.lsp.buf_request_sync(buffer, 'textDocument/completion', params, 20000)
local items = vim.lsp.util.extract_completion_items(answers[client].result)
for _, item in ipairs(items) do
  if item.label == 'KZLB_CONNECT_TIMEOUT' then
    vim.lsp.util.apply_text_edits({ item.textEdit }, buffer, 'utf-16')
  end
end
wait_for('completed key', function() return lines()[3]:find('%(KZLB_CONNECT_TIMEOUT = $') ~= nil end)
print('completed: ' .. lines()[3])

vim.api.nvim_buf_set_lines(buffer, 2, 3, false, { lines()[3] .. '5))' })
vim.lsp.buf.formatting_sync({ tabSize = 2 }, 20000)
wait_for('layout', function() return lines()[1] == 'sales =' end)
print('laid out: ' .. #lines() .. ' lines')
vim.lsp.stop_client(client)
vim.cmd('quitall!')
